#include "tests/support/capture/screen.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstring>
#include <stdexcept>

namespace brindlecast::testing {
namespace {

struct FreeX {
    void operator()(void* memory) const { XFree(memory); }
};
struct FreeImage {
    void operator()(XImage* image) const { XDestroyImage(image); }
};

// A window may vanish between two calls; that is an answer, not the end of the program.
int IgnoreError(Display*, XErrorEvent*) {
    return 0;
}

std::string TitleOf(Display* display, ::Window window) {
    const Atom wanted[] = {XInternAtom(display, "_NET_WM_NAME", False), XA_WM_NAME};
    for (const Atom property : wanted) {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* data = nullptr;
        const int result = XGetWindowProperty(display, window, property, 0, 1024, False, AnyPropertyType,
                                              &type, &format, &count, &rest, &data);
        const std::unique_ptr<unsigned char, FreeX> guard(data);
        if (result == Success && format == 8 && count > 0) {
            return {reinterpret_cast<const char*>(data), count};
        }
    }
    return {};
}

} // namespace

struct Screen::Connection {
    Display* display;
    explicit Connection(Display* opened) : display(opened) {}
    ~Connection() { XCloseDisplay(display); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    [[nodiscard]] ::Window Root() const { return DefaultRootWindow(display); }
};

Screen::Screen() {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        throw std::runtime_error("cannot open the display");
    }
    connection_ = std::make_unique<Connection>(display);
    XSetErrorHandler(IgnoreError);
    const int depth = DefaultDepth(display, DefaultScreen(display));
    if (depth != 24 || ImageByteOrder(display) != LSBFirst) {
        throw std::runtime_error("the screen has no 24 bits a pixel, or another byte order");
    }
}

Screen::~Screen() = default;

std::optional<Screen::Window> Screen::Locate(unsigned long id) const {
    Display* display = connection_->display;
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, id, &attributes) == 0 || attributes.map_state != IsViewable) {
        return std::nullopt;
    }
    Window found{id, 0, 0, attributes.width, attributes.height};
    ::Window child = 0;
    if (XTranslateCoordinates(display, id, connection_->Root(), 0, 0, &found.left, &found.top, &child) == 0) {
        return std::nullopt;
    }
    return found;
}

std::optional<Screen::Window> Screen::FindWindow(const std::string& title) const {
    Display* display = connection_->display;
    std::vector<::Window> open{connection_->Root()};
    std::optional<Window> best;
    // A window manager puts windows of others into frames of its own, so the search goes down.
    while (!open.empty()) {
        const ::Window window = open.back();
        open.pop_back();
        if (window != connection_->Root() && TitleOf(display, window).find(title) != std::string::npos) {
            const auto found = Locate(window);
            if (found && (!best || found->width * found->height > best->width * best->height)) {
                best = found;
            }
        }
        ::Window root = 0;
        ::Window parent = 0;
        ::Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display, window, &root, &parent, &children, &count) != 0 && children != nullptr) {
            const std::unique_ptr<::Window, FreeX> guard(children);
            open.insert(open.end(), children, children + count);
        }
    }
    return best;
}

std::optional<Screen::Picture> Screen::Grab(int left, int top, int width, int height) const {
    Display* display = connection_->display;
    const int screen = DefaultScreen(display);
    if (left < 0 || top < 0 || width <= 0 || height <= 0 || left + width > DisplayWidth(display, screen) ||
        top + height > DisplayHeight(display, screen)) {
        return std::nullopt;
    }
    const std::unique_ptr<XImage, FreeImage> image(
        XGetImage(display, connection_->Root(), left, top, static_cast<unsigned>(width),
                  static_cast<unsigned>(height), AllPlanes, ZPixmap));
    if (!image || image->bits_per_pixel != 32) {
        return std::nullopt;
    }
    Picture picture{width, height, {}};
    const std::size_t row = static_cast<std::size_t>(width) * 4;
    picture.bytes.resize(row * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        std::memcpy(picture.bytes.data() + row * static_cast<std::size_t>(y),
                    image->data + static_cast<std::ptrdiff_t>(y) * image->bytes_per_line, row);
    }
    return picture;
}

void Screen::AskToClose(unsigned long id) const {
    Display* display = connection_->display;
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = id;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, id, False, NoEventMask, &event);
    XSync(display, False);
}

} // namespace brindlecast::testing
