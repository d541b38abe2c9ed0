// Drops files onto a window as a file manager would, by the XDND protocol:
//   xdnd_source [--at X,Y] [--timeout SECONDS] WINDOW FILE...
// WINDOW is an X11 window id (decimal or 0x...); X,Y are root coordinates, by default the window's middle.
// Ends with 0 once the target has said that it took the drop, with 1 when it refuses or does not answer.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <poll.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace brindlecast::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr long kVersion = 5;

struct CloseDisplay {
    void operator()(Display* display) const { XCloseDisplay(display); }
};

struct Point {
    int x;
    int y;
};

struct Request {
    Window target = 0;
    std::optional<Point> at;
    std::chrono::milliseconds timeout{10000};
    std::vector<std::string> files;
};

// One line of text/uri-list: every byte outside the unreserved set of RFC 3986 (and the slash) is escaped, so
// Korean names travel as UTF-8 in percent signs.
std::string FileUri(const std::string& path) {
    static constexpr char kUnreserved[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = "file://";
    for (const char character : path) {
        if (character != '\0' && std::strchr(kUnreserved, character) != nullptr) {
            uri += character;
            continue;
        }
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(character)));
        uri += escaped;
    }
    return uri + "\r\n";
}

class Source {
public:
    explicit Source(Request request) : request_(std::move(request)), display_(XOpenDisplay(nullptr)) {
        if (!display_) {
            throw std::runtime_error("cannot open the display");
        }
        for (const std::string& file : request_.files) {
            uris_ += FileUri(std::filesystem::absolute(file).lexically_normal().string());
        }
        window_ = XCreateSimpleWindow(display_.get(), Root(), -10, -10, 1, 1, 0, 0, 0);
        const Atom uriList = Get("text/uri-list");
        Change(Get("XdndTypeList"), XA_ATOM, &uriList, 1);
    }

    void Drop() {
        const long version = TargetVersion();
        XSetSelectionOwner(display_.get(), Get("XdndSelection"), window_, CurrentTime);
        if (XGetSelectionOwner(display_.get(), Get("XdndSelection")) != window_) {
            throw std::runtime_error("cannot own the selection");
        }
        const Point place = request_.at.value_or(MiddleOfTarget());
        deadline_ = Clock::now() + request_.timeout;
        Send("XdndEnter", version << 24, static_cast<long>(Get("text/uri-list")), 0, 0);
        // A target may refuse the first position while it still reads the offered types.
        bool accepted = false;
        for (int attempt = 0; attempt < 20 && !accepted; ++attempt) {
            Send("XdndPosition", 0, (static_cast<long>(place.x) << 16) | place.y, CurrentTime,
                 static_cast<long>(Get("XdndActionCopy")));
            accepted = (Await("XdndStatus").l[1] & 1) != 0;
        }
        if (!accepted) {
            Send("XdndLeave", 0, 0, 0, 0);
            throw std::runtime_error("the target refuses the drop");
        }
        Send("XdndDrop", 0, CurrentTime, 0, 0);
        const ClientData finished = Await("XdndFinished");
        if (version >= 5 && (finished.l[1] & 1) == 0) {
            throw std::runtime_error("the target did not take the drop");
        }
        if (!delivered_) {
            throw std::runtime_error("the target never asked for the files");
        }
    }

private:
    struct ClientData {
        long l[5];
    };

    [[nodiscard]] Window Root() const { return DefaultRootWindow(display_.get()); }
    [[nodiscard]] Atom Get(const char* name) const { return XInternAtom(display_.get(), name, False); }

    void Change(Atom property, Atom type, const Atom* values, int count) {
        XChangeProperty(display_.get(), window_, property, type, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(values), count);
    }

    // The protocol version both sides speak; throws when the window takes no drops.
    [[nodiscard]] long TargetVersion() const {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* data = nullptr;
        XGetWindowProperty(display_.get(), request_.target, Get("XdndAware"), 0, 1, False, AnyPropertyType,
                           &type, &format, &count, &rest, &data);
        const std::unique_ptr<unsigned char, int (*)(void*)> guard(data, XFree);
        if (format != 32 || count < 1) {
            throw std::runtime_error("the window takes no drops (no XdndAware)");
        }
        return std::min(kVersion, static_cast<long>(*reinterpret_cast<const Atom*>(data)));
    }

    [[nodiscard]] Point MiddleOfTarget() const {
        XWindowAttributes attributes{};
        Point place{};
        Window child = 0;
        if (XGetWindowAttributes(display_.get(), request_.target, &attributes) == 0) {
            throw std::runtime_error("the window does not exist");
        }
        XTranslateCoordinates(display_.get(), request_.target, Root(), attributes.width / 2,
                              attributes.height / 2, &place.x, &place.y, &child);
        return place;
    }

    void Send(const char* message, long second, long third, long fourth, long fifth) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = request_.target;
        event.xclient.message_type = Get(message);
        event.xclient.format = 32;
        const long values[5] = {static_cast<long>(window_), second, third, fourth, fifth};
        std::memcpy(event.xclient.data.l, values, sizeof values);
        XSendEvent(display_.get(), request_.target, False, NoEventMask, &event);
        XFlush(display_.get());
    }

    // Serves requests for the file list until the named message comes.
    ClientData Await(const char* message) {
        const Atom wanted = Get(message);
        while (true) {
            while (XPending(display_.get()) > 0) {
                XEvent event{};
                XNextEvent(display_.get(), &event);
                if (event.type == SelectionRequest) {
                    Serve(event.xselectionrequest);
                } else if (event.type == ClientMessage && event.xclient.message_type == wanted) {
                    ClientData data{};
                    std::memcpy(data.l, event.xclient.data.l, sizeof data.l);
                    return data;
                }
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - Clock::now());
            pollfd descriptor{ConnectionNumber(display_.get()), POLLIN, 0};
            if (left.count() <= 0 || poll(&descriptor, 1, static_cast<int>(left.count())) <= 0) {
                throw std::runtime_error(std::string("no ") + message + " from the target");
            }
        }
    }

    void Serve(const XSelectionRequestEvent& asked) {
        XEvent answer{};
        answer.xselection.type = SelectionNotify;
        answer.xselection.requestor = asked.requestor;
        answer.xselection.selection = asked.selection;
        answer.xselection.target = asked.target;
        answer.xselection.time = asked.time;
        answer.xselection.property = asked.property != None ? asked.property : asked.target;
        if (asked.target == Get("text/uri-list")) {
            XChangeProperty(display_.get(), asked.requestor, answer.xselection.property, asked.target, 8,
                            PropModeReplace, reinterpret_cast<const unsigned char*>(uris_.data()),
                            static_cast<int>(uris_.size()));
            delivered_ = true;
        } else if (asked.target == Get("TARGETS")) {
            const Atom targets[] = {Get("TARGETS"), Get("text/uri-list")};
            XChangeProperty(display_.get(), asked.requestor, answer.xselection.property, XA_ATOM, 32,
                            PropModeReplace, reinterpret_cast<const unsigned char*>(targets), 2);
        } else {
            answer.xselection.property = None;
        }
        XSendEvent(display_.get(), asked.requestor, False, NoEventMask, &answer);
        XFlush(display_.get());
    }

    Request request_;
    std::unique_ptr<Display, CloseDisplay> display_;
    Window window_ = 0;
    std::string uris_;
    bool delivered_ = false;
    Clock::time_point deadline_;
};

Request Parse(std::span<char* const> arguments) {
    Request request;
    std::size_t i = 1;
    for (; i + 1 < arguments.size() && std::strncmp(arguments[i], "--", 2) == 0; i += 2) {
        const std::string option = arguments[i];
        const std::string value = arguments[i + 1];
        if (option == "--at") {
            const std::size_t comma = value.find(',');
            if (comma == std::string::npos) {
                throw std::invalid_argument("--at wants X,Y");
            }
            request.at = Point{std::stoi(value.substr(0, comma)), std::stoi(value.substr(comma + 1))};
        } else if (option == "--timeout") {
            request.timeout = std::chrono::milliseconds(static_cast<long>(std::stod(value) * 1000));
        } else {
            throw std::invalid_argument("unknown option " + option);
        }
    }
    if (i + 2 > arguments.size()) {
        throw std::invalid_argument("usage: xdnd_source [--at X,Y] [--timeout SECONDS] WINDOW FILE...");
    }
    request.target = std::stoul(arguments[i], nullptr, 0);
    request.files.assign(arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1, arguments.end());
    return request;
}

} // namespace
} // namespace brindlecast::testing

int main(int argc, char** argv) {
    namespace testing = brindlecast::testing;
    try {
        testing::Source(testing::Parse(std::span<char* const>(argv, static_cast<std::size_t>(argc)))).Drop();
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "xdnd_source: %s\n", error.what());
        return 1;
    }
}
