#include "platform/cocoa/windows/main_menu.h"

#include <string_view>
#include <vector>

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::cocoa {
namespace {

using objc::send;

struct Item {
  std::string_view title;
  objc::Selector action;  // goes to whatever has the focus, up to the application
  std::string_view key;   // with Command
};

struct Menu {
  std::string_view title;
  std::vector<Item> items;
};

std::vector<Menu> menus() {
  return {{"Karno",
           {{"About Karno", "orderFrontStandardAboutPanel:", ""},
            {"Hide Karno", "hide:", "h"},
            {"Quit Karno", "terminate:", "q"}}},
          {"Edit", {{"Copy", "copy:", "c"}, {"Select All", "selectAll:", "a"}}},
          {"Window", {{"Close", "performClose:", "w"}, {"Minimize", "performMiniaturize:", "m"}}}};
}

objc::Object makeItem(const std::string& title, objc::Sel action, std::string_view key) {
  return objc::Object::adopting(send(send(objc::classNamed("NSMenuItem"), "alloc"),
                                     "initWithTitle:action:keyEquivalent:", objc::string(title), action,
                                     objc::string(key)));
}

objc::Object makeMenu(const std::string& title) {
  return objc::Object::adopting(
      send(send(objc::classNamed("NSMenu"), "alloc"), "initWithTitle:", objc::string(title)));
}

}  // namespace

objc::Object makeMainMenu(const Bundle& bundle) {
  const objc::AutoreleasePool pool;
  const auto text = [&bundle](std::string_view english) {
    return bundle.localisedString(english, "MainMenu");
  };
  objc::Object bar = makeMenu("");
  for (const Menu& menu : menus()) {
    const std::string title = text(menu.title);  // a Mac shows the application's name in place of the first
    const objc::Object submenu = makeMenu(title);
    for (const Item& item : menu.items) {
      send<void>(submenu, "addItem:", makeItem(text(item.title), objc::registered(item.action), item.key));
    }
    const objc::Object entry = makeItem(title, nullptr, "");
    send<void>(entry, "setSubmenu:", submenu);
    send<void>(bar, "addItem:", entry);
  }
  return bar;
}

}  // namespace karno::platform::cocoa
