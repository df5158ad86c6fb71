#include "platform/linux/web/url_loading.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cerrno>
#include <filesystem>
#include <future>

#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"
#include "fake_bundles.h"
#include "platform/posix/scoped_descriptor.h"
#include "web_server.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

using test::FakeBundles;
using test::ScopedEnvironment;
using test::TemporaryFolder;
using test::WebServer;

Error urlError(std::int64_t code, const std::string& description) {
  return Error("NSURLErrorDomain", code, {{"NSLocalizedDescription", description}});
}

const Error kTimedOut = urlError(-1001, "The request timed out.");
const Error kLost = urlError(-1005, "The network connection was lost.");
const Error kTooLong = urlError(-1103, "resource exceeds maximum size");
const Error kUnsupported = urlError(-1002, "unsupported URL");
const Error kUntrusted = urlError(-1202,
                                  "The certificate for this server is invalid. You might be connecting to a "
                                  "server that is pretending to be "
                                  "“localhost” which could put your confidential information at risk.");

// A port of this machine at which nobody listens while this lives.
class UnusedPort {
 public:
  UnusedPort() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    ::bind(socket_.get(), reinterpret_cast<sockaddr*>(&address), length);
    ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &length);
    number_ = ntohs(address.sin_port);
  }
  int number() const { return number_; }

 private:
  ScopedDescriptor socket_;
  int number_ = 0;
};

class URLLoadingTest : public testing::Test {
 protected:
  URLLoadingTest() {
    fs::create_directories(folder_ / "server");
    fs::create_directories(folder_ / "machine/etc/ssl");
    server_ = std::make_unique<WebServer>(KARNO_WEB_SERVER, folder_ / "server");
    fs::copy(server_->authority(), folder_ / "machine/etc/ssl/cert.pem");
    server_->putPage("/page", "the page");
  }

  // What must be an error.
  Error errorFor(const std::string& url, const URLLimits& limits = {}) {
    const auto contents = CurlURLLoading(bundles_, limits).contentsOfURL(url);
    return contents ? Error("no error but a body of that length", static_cast<int>(contents.value().size()))
                    : contents.error();
  }
  std::string bodyOf(const std::string& url) {
    const auto contents = CurlURLLoading(bundles_).contentsOfURL(url);
    return contents ? contents.value() : contents.error().description();
  }

  const TemporaryFolder folder_;
  const ScopedEnvironment root_{"KARNO_MACHINE_ROOT", folder_ / "machine"};
  const ScopedEnvironment noProxy_{"no_proxy", "*"};
  FakeBundles bundles_;
  std::unique_ptr<WebServer> server_;
};

TEST_F(URLLoadingTest, GivesThePageByteForByte) {
  const std::string page("\0\xFF\r\n bytes", 10);
  server_->putPage("/deep/page", page);

  EXPECT_EQ(bodyOf(server_->https("/deep/page")), page);
  EXPECT_EQ(bodyOf(server_->http("/deep/page")), page);
}

TEST_F(URLLoadingTest, GivesAnEmptyPage) {
  server_->putPage("/empty", "");

  EXPECT_EQ(bodyOf(server_->https("/empty")), "");
}

TEST_F(URLLoadingTest, FetchesAfreshEveryTime) {
  bodyOf(server_->https("/page"));
  server_->putPage("/page", "changed");

  EXPECT_EQ(bodyOf(server_->https("/page")), "changed");
}

TEST_F(URLLoadingTest, SaysWhoAsks) {
  bundles_.main().info.insert_or_assign("CFBundleVersion", Value("42.1"));

  bodyOf(server_->https("/page"));

  EXPECT_EQ(server_->requests(), "GET /page\tKarno/42.1\n");
}

TEST_F(URLLoadingTest, SendsNoVersionThatWouldBreakTheHeader) {
  bundles_.main().info.insert_or_assign("CFBundleVersion", Value("1\r\nX-Other: 2"));

  bodyOf(server_->https("/page"));

  EXPECT_EQ(server_->requests(), "GET /page\tKarno\n");
}

TEST_F(URLLoadingTest, FollowsRedirects) {
  EXPECT_EQ(bodyOf(server_->https("/redirected")), "the page");
  EXPECT_EQ(bodyOf(server_->http("/to-https")), "the page");
  EXPECT_EQ(bodyOf(server_->http("/to-http")), "the page");
}

TEST_F(URLLoadingTest, FollowsTenRedirectsAndNoMore) {
  EXPECT_EQ(errorFor(server_->https("/loop")), urlError(-1007, "too many HTTP redirects"));

  std::string elevenRequests;
  for (int count = 0; count < 11; ++count) elevenRequests += "GET /loop\tKarno\n";
  EXPECT_EQ(server_->requests(), elevenRequests);
}

TEST_F(URLLoadingTest, IsNotLedFromHttpsToHttp) {
  EXPECT_EQ(
      errorFor(server_->https("/to-http")),
      urlError(-1022,
               "The resource could not be loaded because the App Transport Security policy requires the "
               "use of a secure connection."));
  EXPECT_EQ(server_->requests(), "GET /to-http\tKarno\n");
  EXPECT_EQ(errorFor(server_->http("/to-https-and-back")).code(), -1022);
}

TEST_F(URLLoadingTest, IsNotLedToAFile) {
  EXPECT_EQ(errorFor(server_->https("/to-a-file")), kUnsupported);
  EXPECT_EQ(errorFor(server_->http("/to-a-file")), kUnsupported);
}

TEST_F(URLLoadingTest, TakesAnAnswerWithoutSuccessForAnError) {
  EXPECT_EQ(errorFor(server_->https("/releases/latest")),
            Error("NSCocoaErrorDomain", 256,
                  {{"NSLocalizedDescription", "The file “latest” couldn’t be opened."}}));
  EXPECT_EQ(errorFor(server_->https("/choices")).code(), 256);
}

TEST_F(URLLoadingTest, FailsWhenTheServerHangsUp) {
  EXPECT_EQ(errorFor(server_->https("/hang-up")), kLost);
  EXPECT_EQ(errorFor(server_->https("/hang-up-half-way")), kLost);
}

TEST_F(URLLoadingTest, FailsWhenTheServerSpeaksSomethingElse) {
  EXPECT_EQ(errorFor(server_->https("/no-http")), urlError(-1017, "cannot parse response"));
}

TEST_F(URLLoadingTest, StopsAtAnEndlessBody) { EXPECT_EQ(errorFor(server_->https("/endless")), kTooLong); }

TEST_F(URLLoadingTest, TakesABodyOfExactlyTheLongestLength) {
  EXPECT_EQ(errorFor(server_->https("/page"), {.bodyBytesMax = 7}), kTooLong);
  EXPECT_EQ(errorFor(server_->https("/page"), {.bodyBytesMax = 8}),
            Error("no error but a body of that length", 8));
}

TEST_F(URLLoadingTest, GivesUpOnAServerThatIsSilent) {
  EXPECT_EQ(errorFor(server_->https("/silent"), {.silence = std::chrono::seconds(1)}), kTimedOut);
}

TEST_F(URLLoadingTest, EndsAFetchThatIsWantedNoMore) {
  const auto contents =
      CurlURLLoading(bundles_).contentsOfURL(server_->https("/silent"), [] { return false; });

  ASSERT_FALSE(contents);
  EXPECT_EQ(contents.error(), Error::posix(ECANCELED));
}

TEST_F(URLLoadingTest, GivesUpOnABodyThatDripsForEver) {
  EXPECT_EQ(errorFor(server_->https("/drip"), {.request = std::chrono::seconds(2)}), kTimedOut);
}

TEST_F(URLLoadingTest, TakesNoMoreTimeForManyRedirectsThanForOneRequest) {
  EXPECT_EQ(errorFor(server_->https("/slow-loop"), {.request = std::chrono::seconds(1)}), kTimedOut);
}

TEST_F(URLLoadingTest, TrustsOnlyTheAuthoritiesOfTheMachine) {
  const TemporaryFolder other;
  const WebServer stranger(KARNO_WEB_SERVER, other.path());

  EXPECT_EQ(errorFor(stranger.https("/page")), kUntrusted);
  EXPECT_EQ(stranger.requests(), "");
}

TEST_F(URLLoadingTest, TrustsTheSystemsAuthoritiesWhereTheMachineHasNone) {
  fs::remove(folder_ / "machine/etc/ssl/cert.pem");

  EXPECT_EQ(errorFor(server_->https("/page")), kUntrusted);
}

TEST_F(URLLoadingTest, TrustsNobodyWhenTheMachinesAuthoritiesAreDamaged) {
  folder_.write("machine/etc/ssl/cert.pem", "no certificate\n");

  EXPECT_EQ(errorFor(server_->https("/page")), kUntrusted);
}

TEST_F(URLLoadingTest, FailsWhereNobodyListens) {
  const UnusedPort port;

  EXPECT_EQ(errorFor("https://127.0.0.1:" + std::to_string(port.number()) + "/page"),
            urlError(-1004, "Could not connect to the server."));
}

// No host has a name that ends in .invalid (RFC 2606).
TEST_F(URLLoadingTest, FailsForAnUnknownHost) {
  EXPECT_EQ(errorFor("https://karno.invalid/page"),
            urlError(-1003, "A server with the specified hostname could not be found."));
}

TEST_F(URLLoadingTest, RefusesWhatIsNoWebAddress) {
  EXPECT_EQ(errorFor("file:///etc/passwd"), kUnsupported);
  EXPECT_EQ(errorFor("ftp://localhost/page"), kUnsupported);
  EXPECT_EQ(errorFor("localhost/page"), kUnsupported);
  EXPECT_EQ(errorFor(""), kUnsupported);
  EXPECT_EQ(errorFor("https://a host/page"), urlError(-1000, "bad URL"));
  EXPECT_EQ(errorFor("https://"), urlError(-1000, "bad URL"));
  EXPECT_EQ(errorFor(std::string("https://localhost/\0", 19)), urlError(-1000, "bad URL"));
}

// A disk on which there is no room.
class FullDisk final : public URLSink {
 public:
  std::optional<Error> take(std::string_view) override { return Error::posix(ENOSPC); }
};

TEST_F(URLLoadingTest, FailsWithWhatKeepsTheBytesFromBeingTaken) {
  FullDisk disk;

  const auto error = fetchURL(server_->https("/page"), "Karno", {}, disk);

  EXPECT_EQ(error, Error::posix(ENOSPC));
}

TEST_F(URLLoadingTest, FetchesManyAtTheSameTime) {
  std::vector<std::future<std::string>> running;

  for (int count = 0; count < 12; ++count) {
    running.push_back(std::async(std::launch::async, [this] { return bodyOf(server_->https("/page")); }));
  }
  std::vector<std::string> bodies;
  for (auto& one : running) bodies.push_back(one.get());

  EXPECT_EQ(bodies, std::vector<std::string>(12, "the page"));
}

}  // namespace
}  // namespace karno::platform
