#include "fake_files.h"

#include <cerrno>
#include <sstream>
#include <utility>

namespace karno::test {
namespace {

using platform::Error;
using platform::FileType;

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

bool isBelow(const std::string& path, const std::string& folder) { return path.starts_with(folder + "/"); }

// As a C stream: lines stay in the buffer until it is flushed or closed, and the open file follows renames.
class Stream final : public platform::AppendStream {
 public:
  Stream(std::shared_ptr<FakeFiles::Content> content, std::shared_ptr<bool> diskFull)
      : content_(std::move(content)), diskFull_(std::move(diskFull)) {}
  ~Stream() override { writeBuffer(); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  void writeLine(std::string_view line) override { buffer_.append(line).append("\n"); }
  void flush() override { writeBuffer(); }

 private:
  void writeBuffer() {
    if (!*diskFull_) content_->text += buffer_;
    buffer_.clear();
  }

  std::shared_ptr<FakeFiles::Content> content_;
  std::shared_ptr<bool> diskFull_;
  std::string buffer_;
};

}  // namespace

FakeFiles::FakeFiles(FakeScheduler& scheduler, FakeClock& clock) : scheduler_(scheduler), clock_(clock) {
  addDirectory("/Users/tester/Library");
}

bool FakeFiles::fileExists(const std::string& path) const {
  scheduler_.countAction();
  return find(path) != nullptr;
}

std::optional<std::uint64_t> FakeFiles::sizeInBytes(const std::string& path) const {
  scheduler_.countAction();
  ++sizeReads_;
  const Node* node = find(path);
  if (node == nullptr || !node->content) return std::nullopt;
  return node->content->bytesBefore + node->content->text.size();
}

platform::Result<std::string> FakeFiles::read(const std::string& path) const {
  if (const auto error = failure("read " + path)) return *error;
  const Node* node = find(path);
  if (node == nullptr) return Error::posix(ENOENT);
  if (!node->content) return Error::posix(EISDIR);
  return std::string(node->content->bytesBefore, 'x') + node->content->text;
}

platform::Result<std::string> FakeFiles::destinationOfSymbolicLink(const std::string& path) const {
  const Node* node = find(path);
  if (node == nullptr) return Error::posix(ENOENT);
  if (node->type != FileType::SymbolicLink) return Error::posix(EINVAL);
  return node->destination;
}

std::optional<Error> FakeFiles::createFile(const std::string& path) {
  if (const auto error = failure("createFile " + path)) return error;
  if (find(parentOf(path)) == nullptr) return Error::posix(ENOENT);
  addFile(path, "");
  return std::nullopt;
}

std::optional<Error> FakeFiles::createDirectory(const std::string& path) {
  if (const auto error = failure("createDirectory " + path)) return error;
  const Node* node = find(path);
  if (node != nullptr && node->type != FileType::Directory) return Error::posix(EEXIST);
  addDirectory(path);
  return std::nullopt;
}

std::optional<Error> FakeFiles::remove(const std::string& path) {
  if (const auto error = failure("remove " + path)) return error;
  if (find(path) == nullptr) return Error::posix(ENOENT);
  std::erase_if(nodes_, [&](const auto& each) { return each.first == path || isBelow(each.first, path); });
  return std::nullopt;
}

std::optional<Error> FakeFiles::move(const std::string& from, const std::string& to) {
  if (const auto error = failure("move " + from)) return error;
  if (find(from) == nullptr) return Error::posix(ENOENT);
  if (find(to) != nullptr) return Error::posix(EEXIST);
  std::map<std::string, Node> moved;
  std::erase_if(nodes_, [&](const auto& each) {
    if (each.first != from && !isBelow(each.first, from)) return false;
    moved[to + each.first.substr(from.size())] = each.second;
    return true;
  });
  nodes_.merge(moved);
  return std::nullopt;
}

void FakeFiles::enumerate(const std::string& folder, const Visitor& visit) const {
  if (failure("read " + folder)) return;
  std::vector<std::string> skipped;
  const auto snapshot = nodes_;  // the visitor may remove what it sees
  for (const auto& [path, node] : snapshot) {
    if (!isBelow(path, folder)) continue;
    bool skip = false;
    for (const std::string& each : skipped) skip = skip || isBelow(path, each);
    if (skip) continue;
    const bool enter = visit({path.substr(folder.size() + 1), node.type, node.creationDate});
    if (node.type == FileType::Directory && !enter) skipped.push_back(path);
  }
}

std::unique_ptr<platform::AppendStream> FakeFiles::openForAppending(const std::string& path) {
  scheduler_.countAction();
  ++opens_[path];
  if (failure("open " + path)) return nullptr;
  const Node* parent = find(parentOf(path));
  if (parent == nullptr || parent->type != FileType::Directory) return nullptr;
  if (find(path) == nullptr) insert(path, {FileType::Regular, clock_.now(), std::make_shared<Content>(), {}});
  if (!find(path)->content) return nullptr;
  return std::make_unique<Stream>(find(path)->content, diskFull_);
}

void FakeFiles::addFile(const std::string& path, std::string text) {
  addFile(path, std::move(text), clock_.now());
}

void FakeFiles::addFile(const std::string& path, std::string text, platform::Date creationDate) {
  auto content = std::make_shared<Content>();
  content->text = std::move(text);
  insert(path, {FileType::Regular, creationDate, std::move(content), {}});
}

void FakeFiles::addDirectory(const std::string& path) {
  if (path == "/" || find(path) != nullptr) return;
  insert(path, {FileType::Directory, clock_.now(), nullptr, {}});
}

void FakeFiles::addSymbolicLink(const std::string& path, std::string destination) {
  insert(path, {FileType::SymbolicLink, clock_.now(), nullptr, std::move(destination)});
}

void FakeFiles::addEntry(const std::string& path, FileType type, platform::Date creationDate) {
  insert(path, {type, creationDate, nullptr, {}});
}

void FakeFiles::setSize(const std::string& path, std::uint64_t size) {
  if (find(path) == nullptr) addFile(path, "");
  Content& content = *nodes_.at(path).content;
  content.bytesBefore = size - content.text.size();
}

std::string FakeFiles::text(const std::string& path) const {
  const Node* node = find(path);
  return node != nullptr && node->content ? node->content->text : "";
}

std::vector<std::string> FakeFiles::lines(const std::string& path) const {
  std::istringstream stream(text(path));
  std::vector<std::string> result;
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

std::shared_ptr<const FakeFiles::Content> FakeFiles::content(const std::string& path) const {
  const Node* node = find(path);
  return node == nullptr ? nullptr : node->content;
}

int FakeFiles::opens(const std::string& path) const {
  const auto found = opens_.find(path);
  return found == opens_.end() ? 0 : found->second;
}

std::optional<Error> FakeFiles::failure(const std::string& operation) const {
  scheduler_.countAction();
  const auto found = failures_.find(operation);
  if (found == failures_.end()) return std::nullopt;
  return Error::posix(found->second);
}

const FakeFiles::Node* FakeFiles::find(const std::string& path) const {
  const auto found = nodes_.find(path);
  return found == nodes_.end() ? nullptr : &found->second;
}

void FakeFiles::insert(const std::string& path, Node node) {
  addDirectory(parentOf(path));
  nodes_[path] = std::move(node);
}

}  // namespace karno::test
