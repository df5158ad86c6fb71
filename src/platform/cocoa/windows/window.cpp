#include "platform/cocoa/windows/window.h"

#include "platform/cocoa/runtime/callback.h"
#include "platform/cocoa/runtime/class_builder.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/windows/application_icon.h"
#include "platform/cocoa/windows/redrawing.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::send;

constexpr objc::UInteger kTitled = 1;
constexpr objc::UInteger kClosable = 2;
constexpr objc::UInteger kMiniaturizable = 4;
constexpr objc::UInteger kResizable = 8;
constexpr objc::UInteger kBackingStoreBuffered = 2;
constexpr objc::UInteger kMovesToActiveSpace = 2;
constexpr objc::UInteger kBezelStyleRounded = 1;
constexpr objc::UInteger kMomentaryPushIn = 7;
constexpr objc::UInteger kProgressBar = 0;
constexpr objc::UInteger kScaleProportionallyUpOrDown = 3;
constexpr objc::UInteger kBezelBorder = 2;
constexpr double kLongestText = 1e7;  // in points
constexpr double kSystemFontSize = 13;
constexpr double kSmallFontSize = 12;
constexpr const char* kWindowWillClose = "NSWindowWillCloseNotification";

objc::Object allocated(objc::ClassName name, const Frame& frame) {
  const objc::Rect rect{{frame.x, frame.y}, {frame.width, frame.height}};
  return objc::Object::adopting(send(send(objc::classNamed(name), "alloc"), "initWithFrame:", rect));
}

objc::Object makeField(const Frame& frame, std::string_view text) {
  objc::Object field = allocated("NSTextField", frame);
  send<void>(field, "setStringValue:", objc::string(text));
  return field;
}

Id fontOf(TextStyle style) {
  const Class fonts = objc::classNamed("NSFont");
  switch (style) {
    case TextStyle::Headline:
      return send(fonts, "boldSystemFontOfSize:", kSystemFontSize);
    case TextStyle::Small:
      return send(fonts, "systemFontOfSize:", kSmallFontSize);
    case TextStyle::Plain:
      break;
  }
  return send(fonts, "systemFontOfSize:", kSystemFontSize);
}

objc::Object makePictureView(const Frame& frame, Id image) {
  objc::Object view = allocated("NSImageView", frame);
  send<void>(view, "setImageScaling:", kScaleProportionallyUpOrDown);
  send<void>(view, "setImage:", image);
  return view;
}

objc::Object makeWindow(double width, double height, Window::Options options) {
  const objc::Rect content{{0, 0}, {width, height}};
  const objc::UInteger style = kTitled | kClosable | (options.miniaturizable ? kMiniaturizable : 0) |
                               (options.resizable ? kResizable : 0);
  objc::Object window = objc::Object::adopting(send(send(objc::classNamed("NSWindow"), "alloc"),
                                                    "initWithContentRect:styleMask:backing:defer:", content,
                                                    style, kBackingStoreBuffered, true));
  send<void>(window, "setReleasedWhenClosed:", false);
  send<void>(window, "setCollectionBehavior:", kMovesToActiveSpace);
  if (objc::respondsTo(window, "setRestorable:")) send<void>(window, "setRestorable:", false);
  return window;
}

objc::Boolean shouldClose(Id self, Id) {
  const auto* const request = static_cast<const std::function<void()>*>(objc::stateOf(self));
  if (request == nullptr || !*request) return true;
  // A copy: the handler may set another one, or destroy the window.
  const auto running = *request;
  running();
  return false;
}

// Every window can be closed, since a window manager under Linux ends the whole process when the user closes
// one that cannot; what closing it means is the delegate's to say.
objc::Object makeDelegate() {
  static const Class made = objc::ClassBuilder("KarnoWindowDelegate", objc::classNamed("NSObject"))
                                .state()
                                .method<shouldClose>("windowShouldClose:")
                                .registerClass();
  return objc::Object::adopting(send(send(made, "alloc"), "init"));
}

Id notificationCenter() { return send(objc::classNamed("NSNotificationCenter"), "defaultCenter"); }
Id modalApplication() { return send(objc::classNamed("NSApplication"), "sharedApplication"); }

}  // namespace

struct Window::State {
  State(double width, double height, Options options)
      : window(makeWindow(width, height, options)),
        delegate(makeDelegate()),
        willClose([this](Id) { tellWillClose(); }) {
    objc::setState(delegate.get(), &closeRequest);
    send<void>(window, "setDelegate:", delegate);
  }

  void tellWillClose() {
    // A copy: the handler may set another one while it runs.
    const auto handler = willCloseHandler;
    if (handler) {
      handler();
    }
  }

  // GNUstep (gui 0.29) throws away what was drawn when the window manager is slower than a change of size.
  void redraw() { send<void>(send(window, "contentView"), "setNeedsDisplay:", true); }

  void add(const objc::Object& view) { send<void>(send(window, "contentView"), "addSubview:", view); }

  objc::Object window;
  objc::Object delegate;  // a window does not own it
  std::function<void()> closeRequest;
  std::function<void()> willCloseHandler;
  Callback willClose;
  std::vector<std::unique_ptr<Callback>> buttonCallbacks;  // a button does not own its target
};

Window::Window(std::string_view title, double width, double height, Options options) {
  const objc::AutoreleasePool pool;
  state_ = std::make_shared<State>(width, height, options);
  setTitle(title);
  const objc::Sel action = Callback::action();
  send<void>(notificationCenter(), "addObserver:selector:name:object:", state_->willClose.target(), action,
             objc::string(kWindowWillClose), state_->window);
}

Window::~Window() {
  {
    const objc::AutoreleasePool pool;
    send<void>(notificationCenter(), "removeObserver:", state_->willClose.target());
    send<void>(state_->window, "setDelegate:", nullptr);
    objc::setState(state_->delegate.get(), nullptr);
    send<void>(state_->window, "orderOut:", nullptr);
  }
  // A button whose press led here is still at work: the native window stays until the event is done.
  const objc::Object window = state_->window;
  send(send(window, "retain"), "autorelease");
}

void Window::setTitle(std::string_view title) {
  send<void>(state_->window, "setTitle:", objc::string(title));
}

std::string Window::title() const {
  const objc::AutoreleasePool pool;
  return objc::text(send(state_->window, "title"));
}

void Window::center() { send<void>(state_->window, "center"); }

void Window::setContentSize(double width, double height) {
  const auto before = send<objc::Rect>(state_->window, "frame");
  send<void>(state_->window, "setContentSize:", objc::Size{width, height});
  send<void>(state_->window,
             "setFrameTopLeftPoint:", objc::Point{before.origin.x, before.origin.y + before.size.height});
  state_->redraw();
}

void Window::redrawLater() {
  drawAgain([weak = std::weak_ptr<State>(state_)] {
    if (const auto state = weak.lock()) state->redraw();
  });
}

void Window::show() {
  send<void>(state_->window, "makeKeyAndOrderFront:", nullptr);
  state_->redraw();
  redrawLater();
}
void Window::close() { send<void>(state_->window, "close"); }
bool Window::isVisible() const { return send<bool>(state_->window, "isVisible"); }
void Window::setWillClose(std::function<void()> handler) { state_->willCloseHandler = std::move(handler); }

void Window::setCloseRequest(std::function<void()> handler) { state_->closeRequest = std::move(handler); }

long Window::runModal() {
  redrawLater();
  return send<objc::Integer>(modalApplication(), "runModalForWindow:", state_->window);
}

void Window::stopModal(long code) {
  send<void>(modalApplication(), "stopModalWithCode:", objc::Integer{code});
}

Label Window::addLabel(const Frame& frame, std::string_view text, bool selectable, TextStyle style) {
  const objc::AutoreleasePool pool;
  objc::Object field = makeField(frame, text);
  send<void>(field, "setEditable:", false);
  send<void>(field, "setSelectable:", selectable);
  send<void>(field, "setBezeled:", false);
  send<void>(field, "setBordered:", false);
  send<void>(field, "setDrawsBackground:", false);
  send<void>(field, "setFont:", fontOf(style));
  send<void>(send(field, "cell"), "setWraps:", true);
  state_->add(field);
  return Label(std::move(field));
}

ScrollingText Window::addScrollingText(const Frame& frame, std::string_view text) {
  const objc::AutoreleasePool pool;
  objc::Object scroll = allocated("NSScrollView", frame);
  send<void>(scroll, "setHasVerticalScroller:", true);
  send<void>(scroll, "setAutohidesScrollers:", true);
  send<void>(scroll, "setBorderType:", kBezelBorder);
  objc::Object view = allocated("NSTextView", {0, 0, frame.width, frame.height});
  send<void>(view, "setEditable:", false);
  send<void>(view, "setFont:", fontOf(TextStyle::Small));
  send<void>(view, "setTextContainerInset:", objc::Size{kScrollingTextMargin, kScrollingTextMargin});
  send<void>(view, "setHorizontallyResizable:", false);
  send<void>(view, "setVerticallyResizable:", true);
  send<void>(view, "setMaxSize:", objc::Size{kLongestText, kLongestText});
  send<void>(scroll, "setDocumentView:", view);
  state_->add(scroll);
  ScrollingText made(std::move(scroll), std::move(view));
  made.setText(text);
  return made;
}

TextField Window::addTextField(const Frame& frame, std::string_view text) {
  const objc::AutoreleasePool pool;
  objc::Object field = makeField(frame, text);
  state_->add(field);
  return TextField(std::move(field));
}

ProgressBar Window::addProgressBar(const Frame& frame) {
  const objc::AutoreleasePool pool;
  objc::Object bar = allocated("NSProgressIndicator", frame);
  send<void>(bar, "setStyle:", kProgressBar);
  send<void>(bar, "setIndeterminate:", false);
  state_->add(bar);
  return ProgressBar(std::move(bar));
}

Icon Window::addApplicationIcon(const Frame& frame) {
  const objc::AutoreleasePool pool;
  objc::Object view = makePictureView(frame, applicationIcon());
  state_->add(view);
  return Icon(std::move(view));
}

Icon Window::addPicture(const Frame& frame, const std::string& path) {
  const objc::AutoreleasePool pool;
  const Id allocatedImage = send(objc::classNamed("NSImage"), "alloc");
  const objc::Object image =
      objc::Object::adopting(send(allocatedImage, "initWithContentsOfFile:", objc::string(path)));
  objc::Object view = makePictureView(frame, image.get());
  state_->add(view);
  return Icon(std::move(view));
}

Button Window::addButton(const Frame& frame, std::string_view title, std::string_view keyEquivalent,
                         std::function<void()> onClick) {
  const objc::AutoreleasePool pool;
  const auto& callback = state_->buttonCallbacks.emplace_back(
      std::make_unique<Callback>([onClick = std::move(onClick)](Id) { onClick(); }));
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

void Window::setTabOrder(const std::vector<Button>& buttons) {
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    const Button& next = buttons[(i + 1) % buttons.size()];
    send<void>(buttons[i].view(), "setNextKeyView:", next.view());
  }
  if (!buttons.empty()) {
    send<void>(state_->window, "setInitialFirstResponder:", buttons.front().view());
  }
}

}  // namespace karno::platform::cocoa
