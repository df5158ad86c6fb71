#include "platform/cocoa/controls.h"

#include <vector>

#include "platform/cocoa/callback.h"
#include "platform/cocoa/strings.h"

namespace karno::platform::cocoa {
namespace {

using objc::send;

constexpr objc::UInteger kTitled = 1;
constexpr objc::UInteger kClosable = 2;
constexpr objc::UInteger kMiniaturizable = 4;
constexpr objc::UInteger kResizable = 8;
constexpr objc::UInteger kBackingStoreBuffered = 2;
constexpr objc::UInteger kBezelStyleRounded = 1;
constexpr objc::UInteger kMomentaryPushIn = 7;
constexpr const char* kWindowWillClose = "NSWindowWillCloseNotification";

objc::Object allocated(objc::ClassName name, const Frame& frame) {
  const objc::Rect rect{{frame.x, frame.y}, {frame.width, frame.height}};
  return objc::Object::adopting(send(send(objc::classNamed(name), "alloc"), "initWithFrame:", rect));
}

void setStringValue(const objc::Object& control, std::string_view text) {
  send<void>(control, "setStringValue:", objc::string(text));
}

objc::Object makeField(const Frame& frame, std::string_view text) {
  objc::Object field = allocated("NSTextField", frame);
  setStringValue(field, text);
  return field;
}

objc::Object makeWindow(double width, double height, Window::Options options) {
  const objc::Rect content{{0, 0}, {width, height}};
  const objc::UInteger style = kTitled | kClosable | (options.miniaturizable ? kMiniaturizable : 0) |
                               (options.resizable ? kResizable : 0);
  objc::Object window = objc::Object::adopting(send(send(objc::classNamed("NSWindow"), "alloc"),
                                                    "initWithContentRect:styleMask:backing:defer:", content,
                                                    style, kBackingStoreBuffered, true));
  send<void>(window, "setReleasedWhenClosed:", false);
  return window;
}

}  // namespace

void Label::setText(std::string_view text) { setStringValue(field_, text); }
std::string Label::text() const { return objc::text(send(field_, "stringValue")); }

void TextField::setText(std::string_view text) { setStringValue(field_, text); }
std::string TextField::text() const { return objc::text(send(field_, "stringValue")); }

void Button::setTitle(std::string_view title) { send<void>(button_, "setTitle:", objc::string(title)); }
std::string Button::title() const { return objc::text(send(button_, "title")); }
void Button::setEnabled(bool enabled) { send<void>(button_, "setEnabled:", enabled); }
void Button::performClick() { send<void>(button_, "performClick:", nullptr); }

struct Window::State {
  State(double width, double height, Options options)
      : window(makeWindow(width, height, options)), willClose([this](objc::Id) { tellWillClose(); }) {}

  void tellWillClose() {
    // A copy: the handler may set another one while it runs.
    const auto handler = willCloseHandler;
    if (handler) {
      handler();
    }
  }

  void add(const objc::Object& view) { send<void>(send(window, "contentView"), "addSubview:", view); }

  objc::Object window;
  std::function<void()> willCloseHandler;
  Callback willClose;
  std::vector<std::unique_ptr<Callback>> buttonCallbacks;  // a button does not own its target
};

Window::Window(std::string_view title, double width, double height, Options options) {
  const objc::AutoreleasePool pool;
  state_ = std::make_unique<State>(width, height, options);
  setTitle(title);
  const objc::Sel action = Callback::action();
  send<void>(send(objc::classNamed("NSNotificationCenter"), "defaultCenter"),
             "addObserver:selector:name:object:", state_->willClose.target(), action,
             objc::string(kWindowWillClose), state_->window);
}

Window::~Window() {
  const objc::AutoreleasePool pool;
  send<void>(send(objc::classNamed("NSNotificationCenter"), "defaultCenter"),
             "removeObserver:", state_->willClose.target());
  send<void>(state_->window, "orderOut:", nullptr);
}

void Window::setTitle(std::string_view title) {
  send<void>(state_->window, "setTitle:", objc::string(title));
}
std::string Window::title() const { return objc::text(send(state_->window, "title")); }
void Window::center() { send<void>(state_->window, "center"); }
void Window::show() { send<void>(state_->window, "makeKeyAndOrderFront:", nullptr); }
void Window::close() { send<void>(state_->window, "close"); }
bool Window::isVisible() const { return send<bool>(state_->window, "isVisible"); }
void Window::setWillClose(std::function<void()> handler) { state_->willCloseHandler = std::move(handler); }

Label Window::addLabel(const Frame& frame, std::string_view text, bool selectable) {
  const objc::AutoreleasePool pool;
  objc::Object field = makeField(frame, text);
  send<void>(field, "setEditable:", false);
  send<void>(field, "setSelectable:", selectable);
  send<void>(field, "setBezeled:", false);
  send<void>(field, "setBordered:", false);
  send<void>(field, "setDrawsBackground:", false);
  send<void>(send(field, "cell"), "setWraps:", true);
  state_->add(field);
  return Label(std::move(field));
}

TextField Window::addTextField(const Frame& frame, std::string_view text) {
  const objc::AutoreleasePool pool;
  objc::Object field = makeField(frame, text);
  state_->add(field);
  return TextField(std::move(field));
}

Button Window::addButton(const Frame& frame, std::string_view title, std::string_view keyEquivalent,
                         std::function<void()> onClick) {
  const objc::AutoreleasePool pool;
  const auto& callback = state_->buttonCallbacks.emplace_back(
      std::make_unique<Callback>([onClick = std::move(onClick)](objc::Id) { onClick(); }));
  objc::Object native = allocated("NSButton", frame);
  send<void>(native, "setBezelStyle:", kBezelStyleRounded);
  send<void>(native, "setButtonType:", kMomentaryPushIn);
  send<void>(native, "setTarget:", callback->target());
  send<void>(native, "setAction:", Callback::action());
  send<void>(native, "setKeyEquivalent:", objc::string(keyEquivalent));
  Button button(native);
  button.setTitle(title);
  state_->add(native);
  return button;
}

}  // namespace karno::platform::cocoa
