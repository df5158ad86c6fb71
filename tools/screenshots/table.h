#pragma once
#include <map>
#include <string>

namespace karno::screenshots {

// The texts of one language, by token.
class Table {
 public:
  // Reads a Strings.json. Throws std::runtime_error with the reason when it cannot.
  explicit Table(const std::string& path);

  // Throws std::runtime_error when the table has no such token: a picture without its text is of no use.
  const std::string& text(const std::string& token) const;

 private:
  std::string path_;
  std::map<std::string, std::string> texts_;
};

}  // namespace karno::screenshots
