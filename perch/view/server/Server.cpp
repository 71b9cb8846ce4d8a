#include "Server.h"

#include <fmt/format.h>
#include <httplib.h>
#include <sys/socket.h>

#include <chrono>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include "Doorway.h"
#include "Error.h"
#include "HttpServer.h"

namespace perch {
namespace {

constexpr char kAddress[] = "127.0.0.1";
constexpr std::size_t kLongestTarget = 2048;
constexpr std::size_t kMostNames = 16;  // in an address
// Each holds a connection, whose other end may be slow or silent.
constexpr std::size_t kConnections = 256;

constexpr char kContentPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src "
    "'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

std::optional<std::string> headerOf(const httplib::Request& request, const char* name) {
    return request.has_header(name) ? std::optional(request.get_header_value(name)) : std::nullopt;
}

Caller callerOf(const httplib::Request& request) {
    Caller caller;
    caller.path = request.path;
    if (request.has_param("token")) caller.token = request.get_param_value("token");
    caller.cookies = request.get_header_value("Cookie");
    caller.host = request.get_header_value("Host");
    caller.origin = headerOf(request, "Origin");
    caller.fetchSite = headerOf(request, "Sec-Fetch-Site");
    caller.mayHaveBody = request.method != "GET" && request.method != "HEAD";
    caller.bodySize = headerOf(request, "Content-Length");
    caller.hasContentCoding = request.has_header("Content-Encoding");
    caller.hasTransferCoding = request.has_header("Transfer-Encoding");
    return caller;
}

ViewRequest viewRequestOf(const httplib::Request& request) {
    // A head is a page's without its body, which the library leaves out.
    const std::string method = request.method == "HEAD" ? "GET" : request.method;
    ViewRequest asked{.method = method, .path = request.path, .query = {}, .body = request.body};
    for (const auto& [name, value] : request.params)
        asked.query[name] = value;
    return asked;
}

// The body of a request that is refused stays unread, so that nothing can follow on its connection.
void refuse(httplib::Response& response, int status, const std::string& sentence) {
    response.set_header("Connection", "close");
    response.status = status;
    response.set_content(sentence + "\n", "text/plain; charset=utf-8");
}

}  // namespace

struct Server::Http {
    Http(int wanted, const std::string& token, Answer answer, Events& events,
         std::chrono::milliseconds patience)
        : server(patience), answer(std::move(answer)), events(events) {
        server.new_task_queue = [] { return new httplib::ThreadPool(kConnections); };
        server.set_tcp_nodelay(true);
        // The port is nobody else's, unlike by the library's own choice.
        server.set_socket_options([](socket_t socket) {
            const int yes = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        });
        server.set_payload_max_length(kLargestBody);
        server.set_default_headers({{"Content-Security-Policy", kContentPolicy},
                                    {"X-Content-Type-Options", "nosniff"},
                                    {"Referrer-Policy", "no-referrer"},
                                    {"Cross-Origin-Resource-Policy", "same-origin"},
                                    {"Cache-Control", "no-store"}});
        if (wanted != 0 && server.bind_to_port(kAddress, wanted)) port = wanted;
        if (wanted == 0) port = server.bind_to_any_port(kAddress);
        if (port <= 0)
            throw Error(
                fmt::format("cannot listen on port {} of {}; another program may have it, leave --port out "
                            "for one that is free",
                            wanted, kAddress));
        server.letMoreWait(static_cast<int>(kConnections));
        gate.emplace(token, port);
        addHandlers();
    }

    void addHandlers() {
        using Result = httplib::Server::HandlerResponse;
        server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
            if (request.target.size() > kLongestTarget) {
                refuse(response, 414, "the address is too long");
                return Result::Handled;
            }
            if (request.params.size() > kMostNames) {
                refuse(response, 400, "the address asks for too much at once");
                return Result::Handled;
            }
            const Gate::Verdict verdict = gate->judge(callerOf(request));
            if (verdict.status == 200) return Result::Unhandled;
            if (verdict.status == 303) {
                response.set_header("Set-Cookie", gate->cookie());
                comeIn(request, response);
            } else {
                refuse(response, verdict.status, verdict.sentence);
            }
            return Result::Handled;
        });
        server.Get("/api/events",
                   [this](const httplib::Request&, httplib::Response& response) { listen(response); });
        const auto handle = [this](const httplib::Request& request, httplib::Response& response) {
            give(answer(viewRequestOf(request)), response);
        };
        server.Get(".*", handle);
        server.Post(".*", handle);
        server.Put(".*", handle);
        server.Delete(".*", handle);
        server.Patch(".*", handle);
        server.Options(".*", handle);
    }

    // A browser that another page has sent here does not give the cookie to a redirection, but to a page of
    // ours.
    static void comeIn(const httplib::Request& request, httplib::Response& response) {
        if (request.get_header_value("Sec-Fetch-Site") != "cross-site")
            return response.set_redirect("/", 303);
        response.set_content(pageLeadingTo("/"), "text/html; charset=utf-8");
    }

    static void give(ViewAnswer given, httplib::Response& response) {
        response.status = given.status;
        for (const auto& [name, value] : given.headers)
            response.set_header(name, value);
        response.set_header("Content-Type", given.type);
        response.body = std::move(given.body);
    }

    // A line now and then shows whether the page is still there.
    void listen(httplib::Response& response) {
        static constexpr std::chrono::milliseconds kPatience{1000};
        auto listener = std::make_shared<Events::Listener>(events);
        response.set_chunked_content_provider(
            "text/event-stream", [this, listener](std::size_t, httplib::DataSink& sink) {
                const std::optional<ViewEvent> event = listener->next(kPatience);
                if (!event && events.hasEnded()) {
                    sink.done();
                    return true;
                }
                const std::string text =
                    event ? fmt::format("event: {}\ndata: {}\n\n", event->name, event->data) : ":\n\n";
                return sink.write(text.data(), text.size());
            });
    }

    HttpServer server;
    const Answer answer;
    Events& events;
    int port = 0;
    std::optional<Gate> gate;
    std::thread serving;
};

Server::Server(int port, const std::string& token, Answer answer, Events& events,
               std::chrono::milliseconds patience)
    : http(std::make_unique<Http>(port, token, std::move(answer), events, patience)) {}

Server::~Server() {
    stop();
}

int Server::port() const {
    return http->port;
}

const Gate& Server::gate() const {
    return *http->gate;
}

void Server::start() {
    http->serving = std::thread([this] { http->server.listen_after_bind(); });
    // A stop before that would not be noticed.
    while (!http->server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void Server::stop() {
    if (!http->serving.joinable()) return;
    http->server.stop();
    http->server.endConnections();
    http->serving.join();
}

}  // namespace perch
