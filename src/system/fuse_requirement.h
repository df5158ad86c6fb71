#pragma once
#include <string>
#include <vector>

namespace karno {

// One row of the table that says which macFUSE a Mac needs at least. Bounds are inclusive.
class FuseRequirement {
 public:
  FuseRequirement(std::string requiredCPU, std::string fuseVersion, std::string macMinVersion,
                  std::string macMaxVersion);

  // The whole table, most demanding row first. Always the same list.
  static const std::vector<FuseRequirement>& allOptions();

  // The processor's name as "uname -m" prints it.
  const std::string& requiredCPU() const { return requiredCPU_; }
  void setRequiredCPU(std::string cpu) { requiredCPU_ = std::move(cpu); }

  const std::string& fuseVersion() const { return fuseVersion_; }
  void setFuseVersion(std::string version) { fuseVersion_ = std::move(version); }

  const std::string& macMinVersion() const { return macMinVersion_; }
  void setMacMinVersion(std::string version) { macMinVersion_ = std::move(version); }

  const std::string& macMaxVersion() const { return macMaxVersion_; }
  void setMacMaxVersion(std::string version) { macMaxVersion_ = std::move(version); }

  std::string description() const;

 private:
  std::string requiredCPU_;
  std::string fuseVersion_;
  std::string macMinVersion_;
  std::string macMaxVersion_;
};

}  // namespace karno
