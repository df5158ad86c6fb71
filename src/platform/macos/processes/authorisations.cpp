#include "platform/macos/processes/authorisations.h"

#include <dlfcn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

#include "platform/posix/processes/spawn.h"
#include "platform/posix/retry.h"

// The compiler brings no headers of the frameworks.
extern "C" {
struct AuthorizationOpaqueRef;
struct AuthorizationItem {
  const char* name;
  std::size_t valueLength;
  void* value;
  std::uint32_t flags;
};
struct AuthorizationItemSet {
  std::uint32_t count;
  AuthorizationItem* items;
};
std::int32_t AuthorizationCreate(const AuthorizationItemSet* rights, const AuthorizationItemSet* environment,
                                 std::uint32_t flags, AuthorizationOpaqueRef** authorization);
std::int32_t AuthorizationCopyRights(AuthorizationOpaqueRef* authorization,
                                     const AuthorizationItemSet* rights,
                                     const AuthorizationItemSet* environment, std::uint32_t flags,
                                     AuthorizationItemSet** granted);
std::int32_t AuthorizationFree(AuthorizationOpaqueRef* authorization, std::uint32_t flags);
}

namespace karno::platform {
namespace {

constexpr std::int32_t kSuccess = 0;
constexpr std::int32_t kCancelled = -60006;  // errAuthorizationCanceled
constexpr std::uint32_t kDefaultFlags = 0;

using Execute = std::int32_t (*)(AuthorizationOpaqueRef* authorization, const char* path,
                                 std::uint32_t options, char* const* arguments, std::FILE** pipe);

}  // namespace

class SecurityAuthorisations::PrivilegedExecution {
 public:
  // Null where the framework has no such function.
  Execute function() {
    if (!isLookedUp_) {
      function_ = reinterpret_cast<Execute>(::dlsym(RTLD_DEFAULT, "AuthorizationExecuteWithPrivileges"));
      isLookedUp_ = true;
    }
    return function_;
  }

 private:
  Execute function_ = nullptr;
  bool isLookedUp_ = false;
};

namespace {

using PrivilegedExecution = std::shared_ptr<SecurityAuthorisations::PrivilegedExecution>;

class SecurityAuthorisation final : public Authorisation {
 public:
  SecurityAuthorisation(AuthorizationOpaqueRef* reference, PrivilegedExecution execution)
      : reference_(reference), execution_(std::move(execution)) {}
  SecurityAuthorisation(const SecurityAuthorisation&) = delete;
  SecurityAuthorisation& operator=(const SecurityAuthorisation&) = delete;
  ~SecurityAuthorisation() override { ::AuthorizationFree(reference_, kDefaultFlags); }

  RightAnswer copyRight(const std::string& right, std::uint32_t flags) override {
    AuthorizationItem item = {.name = right.c_str(), .valueLength = 0, .value = nullptr, .flags = 0};
    const AuthorizationItemSet rights = {.count = 1, .items = &item};
    const std::int32_t status = ::AuthorizationCopyRights(reference_, &rights, nullptr, flags, nullptr);
    if (status == kCancelled) return RightAnswer::Cancelled;
    return status == kSuccess ? RightAnswer::Granted : RightAnswer::Refused;
  }

  bool canExecuteWithPrivileges() override { return execution_->function() != nullptr; }

  // The framework tells neither the child's identifier nor how it ended.
  Result<TaskEnd> executeWithPrivileges(const TaskLaunch& command) override {
    std::vector<std::string> words = command.arguments;
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const std::int32_t status = execution_->function()(reference_, command.executablePath.c_str(),
                                                       kDefaultFlags, arguments.data(), nullptr);
    if (status != kSuccess) return Error(std::string(kOSStatusErrorDomain), status);

    int end = 0;
    if (retryOnInterrupt([&end] { return ::wait(&end); }) == -1) return Error::posix(errno);
    return endFromWaitStatus(end);
  }

 private:
  static constexpr std::string_view kOSStatusErrorDomain = "NSOSStatusErrorDomain";
  AuthorizationOpaqueRef* const reference_;
  const PrivilegedExecution execution_;
};

}  // namespace

SecurityAuthorisations::SecurityAuthorisations() : execution_(std::make_shared<PrivilegedExecution>()) {}

std::unique_ptr<Authorisation> SecurityAuthorisations::create() {
  AuthorizationOpaqueRef* reference = nullptr;
  const std::int32_t status = ::AuthorizationCreate(nullptr, nullptr, kDefaultFlags, &reference);
  if (status != kSuccess || reference == nullptr) return nullptr;
  return std::make_unique<SecurityAuthorisation>(reference, execution_);
}

}  // namespace karno::platform
