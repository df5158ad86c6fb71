#include "fake_files.h"

#include <algorithm>
#include <cerrno>
#include <deque>
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

constexpr int kLinksMax = 40;  // on one way, as Linux has it

// Of a path's folders and its end, from the left.
std::deque<std::string> namesOf(const std::string& path) {
  std::deque<std::string> names;
  std::istringstream text(path);
  for (std::string name; std::getline(text, name, '/');) {
    if (!name.empty() && name != ".") names.push_back(name);
  }
  return names;
}

std::string inFolder(const std::string& folder, const std::string& name) {
  return folder == "/" ? "/" + name : folder + "/" + name;
}

bool isBelow(const std::string& path, const std::string& folder) {
  return path.size() > folder.size() && path.starts_with(inFolder(folder, ""));
}

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
  nodes_["/"].type = FileType::Directory;
  addDirectory("/Users/tester/Library");
}

bool FakeFiles::fileExists(const std::string& path) const {
  scheduler_.countAction();
  return find(path, LastLink::Followed) != nullptr;
}

std::optional<std::uint64_t> FakeFiles::sizeInBytes(const std::string& path) const {
  scheduler_.countAction();
  ++sizeReads_;
  const Node* node = find(path, LastLink::Followed);
  if (node == nullptr) return std::nullopt;
  return node->content ? node->content->bytesBefore + node->content->text.size() : 0;
}

platform::Result<std::string> FakeFiles::read(const std::string& path) const {
  if (const auto error = failure("read " + path)) return *error;
  const auto place = placeOf(path, LastLink::Followed);
  if (!place) return place.error();
  const Node* node = at(place.value());
  if (node == nullptr) return Error::posix(ENOENT);
  if (!node->content) return Error::posix(node->type == FileType::Directory ? EISDIR : EINVAL);
  return std::string(node->content->bytesBefore, 'x') + node->content->text;
}

platform::Result<std::string> FakeFiles::destinationOfSymbolicLink(const std::string& path) const {
  const auto place = placeOf(path, LastLink::Kept);
  if (!place) return place.error();
  const Node* node = at(place.value());
  if (node == nullptr) return Error::posix(ENOENT);
  if (node->type != FileType::SymbolicLink) return Error::posix(EINVAL);
  return node->destination;
}

std::optional<Error> FakeFiles::createFile(const std::string& path) {
  if (const auto error = failure("createFile " + path)) return error;
  const auto place = placeOf(path, LastLink::Followed);
  if (!place) return place.error();
  const Node* node = at(place.value());
  if (const auto error = refusalToChange(place.value())) return error;
  if (node == nullptr) {
    addFile(place.value(), "");
    return std::nullopt;
  }
  if (!node->content) return Error::posix(node->type == FileType::Directory ? EISDIR : ENXIO);
  *node->content = Content();
  return std::nullopt;
}

std::optional<Error> FakeFiles::createDirectory(const std::string& path) {
  if (const auto error = failure("createDirectory " + path)) return error;
  for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
    if (const auto error = createOneDirectory(path.substr(0, end))) return error;
  }
  return createOneDirectory(path);
}

std::optional<Error> FakeFiles::createOneDirectory(const std::string& path) {
  const auto place = placeOf(path, LastLink::Followed);
  if (!place) return place.error();
  const Node* node = at(place.value());
  if (node != nullptr) {
    return node->type == FileType::Directory ? std::nullopt : std::optional(Error::posix(ENOTDIR));
  }
  if (isThere(path)) return Error::posix(EEXIST);  // a link that leads nowhere
  if (const auto error = refusalToChange(place.value())) return error;
  addDirectory(place.value());
  return std::nullopt;
}

std::optional<Error> FakeFiles::remove(const std::string& path) {
  if (const auto error = failure("remove " + path)) return error;
  const auto place = placeOf(path, LastLink::Kept);
  if (!place) return place.error();
  if (at(place.value()) == nullptr) return Error::posix(ENOENT);
  for (const std::string& each : placesFrom(place.value())) {
    const auto hindrance = failures_.find("remove " + each);
    if (hindrance != failures_.end()) return Error::posix(hindrance->second);
    if (readOnly.contains(parentOf(each))) return Error::posix(EACCES);
    nodes_.erase(each);
  }
  return std::nullopt;
}

// What a folder holds comes before the folder.
std::vector<std::string> FakeFiles::placesFrom(const std::string& top) const {
  std::vector<std::string> places;
  for (const auto& [path, node] : nodes_) {
    if (path == top || isBelow(path, top)) places.push_back(path);
  }
  std::reverse(places.begin(), places.end());
  return places;
}

std::optional<Error> FakeFiles::move(const std::string& from, const std::string& to) {
  if (const auto error = failure("move " + from)) return error;
  const auto source = placeOf(from, LastLink::Kept);
  const auto target = placeOf(to, LastLink::Kept);
  if (!source) return source.error();
  if (!target) return target.error();
  if (const auto error = refusalToMove(source.value(), target.value())) return error;
  if (source.value() == target.value()) return std::nullopt;
  nodes_.erase(target.value());
  for (const std::string& each : placesFrom(source.value())) {
    nodes_[target.value() + each.substr(source.value().size())] = std::move(nodes_.extract(each).mapped());
  }
  return std::nullopt;
}

// As rename(2) refuses.
std::optional<Error> FakeFiles::refusalToMove(const std::string& from, const std::string& to) const {
  const Node* source = at(from);
  const Node* target = at(to);
  if (source == nullptr) return Error::posix(ENOENT);
  if (isBelow(to, from)) return Error::posix(EINVAL);
  if (readOnly.contains(parentOf(from)) || readOnly.contains(parentOf(to))) return Error::posix(EACCES);
  if (target == nullptr || from == to) return std::nullopt;
  const bool isFolder = source->type == FileType::Directory;
  if (target->type != FileType::Directory)
    return isFolder ? std::optional(Error::posix(ENOTDIR)) : std::nullopt;
  if (!isFolder) return Error::posix(EISDIR);
  return namesIn(to).empty() ? std::nullopt : std::optional(Error::posix(ENOTEMPTY));
}

void FakeFiles::enumerate(const std::string& folder, const Visitor& visit) const {
  if (failure("read " + folder)) return;
  const auto place = placeOf(folder, LastLink::Followed);
  if (place) walk(place.value(), "", visit);
}

// The visitor may remove what it sees.
void FakeFiles::walk(const std::string& folder, const std::string& prefix, const Visitor& visit) const {
  for (const std::string& name : namesIn(folder)) {
    const std::string path = inFolder(folder, name);
    const Node* node = at(path);
    if (node == nullptr) continue;
    const bool isFolder = node->type == FileType::Directory;
    if (visit({prefix + name, node->type, node->creationDate}) && isFolder)
      walk(path, prefix + name + "/", visit);
  }
}

std::unique_ptr<platform::AppendStream> FakeFiles::openForAppending(const std::string& path) {
  scheduler_.countAction();
  ++opens_[path];
  if (failure("open " + path)) return nullptr;
  const auto place = placeOf(path, LastLink::Followed);
  if (!place) return nullptr;
  if (refusalToChange(place.value())) return nullptr;
  if (at(place.value()) == nullptr) addFile(place.value(), "");
  const Node* node = at(place.value());
  return node->content ? std::make_unique<Stream>(node->content, diskFull_) : nullptr;
}

bool FakeFiles::isFolder(const std::string& path) const {
  const Node* node = find(path, LastLink::Followed);
  return node != nullptr && node->type == FileType::Directory;
}

bool FakeFiles::isWritable(const std::string& path) const {
  const auto place = placeOf(path, LastLink::Followed);
  return place && at(place.value()) != nullptr && !readOnly.contains(place.value());
}

std::string FakeFiles::resolvingSymbolicLinks(const std::string& path) const {
  const auto place = placeOf(path, LastLink::Followed);
  return place && at(place.value()) != nullptr ? place.value() : path;
}

std::optional<Error> FakeFiles::copy(const std::string& from, const std::string& to,
                                     const Hindrance& hindrance) {
  if (const auto error = refusalToCopy(from, to)) return error;
  const std::string source = placeOf(from, LastLink::Kept).value();
  const std::string target = placeOf(to, LastLink::Kept).value();
  std::vector<std::string> places = placesFrom(source);
  std::reverse(places.begin(), places.end());
  std::map<std::string, Node> copy;
  for (const std::string& each : places) {
    const std::string copied = target + each.substr(source.size());
    if (const auto error = hindrance(copied)) return error;
    const Node& original = nodes_.at(each);
    if (original.type == FileType::Other) return Error::posix(ENOTSUP);
    copy[copied] = {original.type, clock_.now(),
                    original.content ? std::make_shared<Content>(*original.content) : nullptr,
                    original.destination};
    if (readOnly.contains(each)) readOnly.insert(copied);
  }
  for (auto& [place, node] : copy) nodes_[place] = std::move(node);
  return std::nullopt;
}

std::optional<Error> FakeFiles::refusalToCopy(const std::string& from, const std::string& to) const {
  if (isThere(to)) return Error::posix(EEXIST);
  const auto source = placeOf(from, LastLink::Kept);
  if (!source) return source.error();
  if (at(source.value()) == nullptr) return Error::posix(ENOENT);
  const auto target = placeOf(to, LastLink::Kept);
  if (!target) return target.error();
  if (isBelow(target.value(), source.value())) return Error::posix(EINVAL);
  return refusalToChange(target.value());
}

// To write what is there, or to add an entry to its folder.
std::optional<Error> FakeFiles::refusalToChange(const std::string& place) const {
  const bool isAllowed = !readOnly.contains(at(place) == nullptr ? parentOf(place) : place);
  return isAllowed ? std::nullopt : std::optional(Error::posix(EACCES));
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
  if (find(path, LastLink::Followed) != nullptr) return;
  insert(path, {FileType::Directory, clock_.now(), nullptr, {}});
}

void FakeFiles::addSymbolicLink(const std::string& path, std::string destination) {
  insert(path, {FileType::SymbolicLink, clock_.now(), nullptr, std::move(destination)});
}

void FakeFiles::addEntry(const std::string& path, FileType type, platform::Date creationDate) {
  insert(path, {type, creationDate, nullptr, {}});
}

void FakeFiles::setSize(const std::string& path, std::uint64_t size) {
  if (find(path, LastLink::Followed) == nullptr) addFile(path, "");
  Content& content = *find(path, LastLink::Followed)->content;
  content.bytesBefore = size - content.text.size();
}

std::string FakeFiles::text(const std::string& path) const {
  const Node* node = find(path, LastLink::Followed);
  return node != nullptr && node->content ? node->content->text : "";
}

std::vector<std::string> FakeFiles::lines(const std::string& path) const {
  std::istringstream stream(text(path));
  std::vector<std::string> result;
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

std::shared_ptr<const FakeFiles::Content> FakeFiles::content(const std::string& path) const {
  const Node* node = find(path, LastLink::Followed);
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

platform::Result<std::string> FakeFiles::placeOf(const std::string& path, LastLink lastLink) const {
  std::deque<std::string> names = namesOf(path);
  std::string place = "/";
  for (int links = 0; !names.empty();) {
    const std::string name = std::move(names.front());
    names.pop_front();
    const std::string next = name == ".." ? parentOf(place) : inFolder(place, name);
    const Node* node = at(next);
    if (node != nullptr && node->type == FileType::SymbolicLink &&
        !(names.empty() && lastLink == LastLink::Kept)) {
      if (++links > kLinksMax) return Error::posix(ELOOP);
      if (node->destination.starts_with('/')) place = "/";
      const std::deque<std::string> way = namesOf(node->destination);
      names.insert(names.begin(), way.begin(), way.end());
      continue;
    }
    if (!names.empty() && node == nullptr) return Error::posix(ENOENT);
    if (!names.empty() && node->type != FileType::Directory) return Error::posix(ENOTDIR);
    place = next;
  }
  return place;
}

std::vector<std::string> FakeFiles::namesIn(const std::string& folder) const {
  std::vector<std::string> names;
  for (auto each = nodes_.upper_bound(folder); each != nodes_.end(); ++each) {
    const std::string& path = each->first;
    if (parentOf(path) == folder) names.push_back(path.substr(path.rfind('/') + 1));
  }
  return names;
}

const FakeFiles::Node* FakeFiles::at(const std::string& place) const {
  const auto found = nodes_.find(place);
  return found == nodes_.end() ? nullptr : &found->second;
}

const FakeFiles::Node* FakeFiles::find(const std::string& path, LastLink lastLink) const {
  const auto place = placeOf(path, lastLink);
  return place ? at(place.value()) : nullptr;
}

void FakeFiles::insert(const std::string& path, Node node) {
  addDirectory(parentOf(path));
  nodes_[placeOf(path, LastLink::Kept).value()] = std::move(node);
}

}  // namespace karno::test
