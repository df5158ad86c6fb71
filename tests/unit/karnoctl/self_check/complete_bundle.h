#pragma once
#include <string>

#include "fake_platform.h"
#include "fake_runtime_check.h"
#include "made_up_programs.h"
#include "platform/property_lists/property_lists.h"

namespace karno::test {

// The launcher's bundle with everything in it, at /Applications/Karno.app of a fake machine. Tests take away
// or damage what they are about.
class CompleteBundle {
 public:
  static constexpr const char* kPath = "/Applications/Karno.app";

  // As on Linux, with karnoctl and the others built for Intel.
  explicit CompleteBundle(FakePlatform& machine) : machine_(machine) {
    writeInformation();
    writeHelper("Karno", "it.vantul.Karno");
    writeHelper("Karno(Fuse)", "it.vantul.KarnoFuse");
    for (const char* const language : {"Base", "de"}) {
      write(table(language, "Strings.json"), R"({"CANCEL": "Cancel", "OK": "OK"})");
      write(table(language, "Updater.json"), R"({"LATER": "Later"})");
      writeList(table(language, "MoveApplication.strings"), {{"Do Not Move", "Do Not Move"}});
    }
    writePrograms(ELF{}.bytes());
    write("Contents/Helpers/karno-installer", ELF{}.bytes());
    write("Contents/Resources/karno.png", "the icon");
  }

  // As on a Mac.
  void becomeMacBundle() {
    remove("Contents/Helpers/karno-installer");
    remove(table("Base", "Updater.json"));
    remove(table("de", "Updater.json"));
    for (const char* const language : {"Base", "de"}) {
      writeList(table(language, "MainMenu.strings"), {{"Quit Karno", "Quit Karno"}});
      writeList(table(language, "InfoPlist.strings"), {{"NSAppleEventsUsageDescription", "A reason."}});
    }
    remove("Contents/Resources/karno.png");
    write("Contents/Resources/Karno.icns", "the icon");
    writePrograms(universal({{.processor = kIntel}, {.processor = kAppleSilicon}}));
    machine_.files.addDirectory(path("Contents/Frameworks/Sparkle.framework"));
    write("Contents/_CodeSignature/CodeResources", "the seal");
  }

  static std::string path(const std::string& file) { return std::string(kPath) + "/" + file; }

  static std::string table(const std::string& language, const std::string& name) {
    return "Contents/Resources/" + language + ".lproj/" + name;
  }

  void write(const std::string& file, const std::string& content) {
    machine_.files.addFile(path(file), content);
  }

  void writeList(const std::string& file, const platform::Value::Dictionary& entries) {
    write(file, platform::propertyListXML(entries).value());
  }

  // Without a file there, or a folder.
  void remove(const std::string& file) { machine_.files.remove(path(file)); }

  // After a change of it.
  void writeInformation() { writeList("Contents/Info.plist", information); }

  platform::Value::Dictionary information = {
      {"CFBundleDevelopmentRegion", "en"},
      {"CFBundleExecutable", "Karno"},
      {"CFBundleIconFile", "Karno"},
      {"CFBundleIdentifier", "it.vantul.KarnoWrapper"},
      {"CFBundleLocalizations", platform::Value::Array{"en", "de"}},
      {"CFBundleName", "Karno"},
      {"CFBundlePackageType", "APPL"},
      {"CFBundleShortVersionString", "1.0.0"},
      {"CFBundleVersion", "1"},
      {"KarnoMacFUSESite", "macfuse.github.io"},
      {"KarnoReleasesHost", "api.github.com"},
      {"KarnoUpdateFeedHost", "updates.vantul.it"},
      {"LSMinimumSystemVersion", "10.14.6"},
      {"LSUIElement", true},
      {"NSHighResolutionCapable", true},
      {"NSPrincipalClass", "NSApplication"},
      {"SUEnableAutomaticChecks", false},
      {"SUPublicEDKey", "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo="},
      {"SUScheduledCheckInterval", 86400},
      {"SUVerifyUpdateBeforeExtraction", true}};

 private:
  void writeHelper(const std::string& name, const std::string& identifier) {
    writeList("Contents/Helpers/" + name + ".app/Contents/Info.plist",
              {{"CFBundleExecutable", name}, {"CFBundleIdentifier", identifier}});
  }

  void writePrograms(const std::string& program) {
    for (const char* const file : {"Contents/MacOS/Karno", "Contents/MacOS/karnoctl",
                                   "Contents/Helpers/Karno.app/Contents/MacOS/Karno",
                                   "Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)"}) {
      write(file, program);
    }
  }

  FakePlatform& machine_;
};

}  // namespace karno::test
