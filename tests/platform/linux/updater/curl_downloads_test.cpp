#include "platform/linux/updater/curl_downloads.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"
#include "fake_bundles.h"
#include "web_server.h"

namespace karno::platform::updates {
namespace {

namespace fs = std::filesystem;
using test::WebServer;

constexpr std::uint64_t kEnough = 1U << 20U;

class Download : public testing::Test {
 protected:
  Download() {
    fs::create_directories(folder_ / "server");
    fs::create_directories(folder_ / "machine/etc/ssl");
    server_ = std::make_unique<WebServer>(KARNO_WEB_SERVER, folder_ / "server");
    fs::copy(server_->authority(), folder_ / "machine/etc/ssl/cert.pem");
  }

  // 0 and "" for a download that went well.
  std::pair<std::int64_t, std::string> failureOf(const std::string& url, std::uint64_t bytesMax = kEnough,
                                                 const Progress& progress = {}) {
    const auto goOn = [](std::uint64_t, std::uint64_t) { return true; };
    const auto error =
        CurlDownloads(bundles_).download(url, path_, bytesMax, progress ? progress : Progress(goOn));
    return error ? std::pair(error->code(), error->domain()) : std::pair(std::int64_t{0}, std::string());
  }
  std::string downloaded() const {
    std::ostringstream text;
    text << std::ifstream(path_, std::ios::binary).rdbuf();
    return text.str();
  }

  const test::TemporaryFolder folder_;
  const std::string path_ = folder_ / "archive";
  const test::ScopedEnvironment root_{"KARNO_MACHINE_ROOT", folder_ / "machine"};
  const test::ScopedEnvironment noProxy_{"no_proxy", "*"};
  test::FakeBundles bundles_;
  std::unique_ptr<WebServer> server_;
};

using Failure = std::pair<std::int64_t, std::string>;
const Failure kNone{0, ""};

TEST_F(Download, IsTheFileByteForByteAndNobodyElsesToRead) {
  const std::string bytes("\0\xFF\r\n bytes", 10);
  server_->putPage("/file", bytes);

  EXPECT_EQ(failureOf(server_->https("/file")), kNone);

  EXPECT_EQ(downloaded(), bytes);
  EXPECT_EQ(fs::status(path_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Download, TellsHowFarItIs) {
  server_->putPage("/file", std::string(300'000, 'x'));
  std::uint64_t lastDone = 0;
  std::uint64_t lastTotal = 0;

  failureOf(server_->https("/file"), kEnough, [&](std::uint64_t done, std::uint64_t total) {
    lastDone = done;
    lastTotal = total;
    return true;
  });

  EXPECT_EQ(lastDone, 300'000U);
  EXPECT_EQ(lastTotal, 300'000U);
}

TEST_F(Download, FollowsARedirectWithoutKeepingItsPage) {
  server_->putPage("/page", "the file");

  EXPECT_EQ(failureOf(server_->https("/redirected")), kNone);

  EXPECT_EQ(downloaded(), "the file");
}

TEST_F(Download, IsNeverRedirectedAwayFromHttps) {
  EXPECT_EQ(failureOf(server_->https("/to-http")), Failure(-1022, "NSURLErrorDomain"));
  EXPECT_EQ(downloaded(), "");
}

TEST_F(Download, IsNeverRedirectedBackFromHttpsToHttp) {
  EXPECT_EQ(failureOf(server_->http("/to-https-and-back")), Failure(-1022, "NSURLErrorDomain"));
  EXPECT_EQ(downloaded(), "");
}

TEST_F(Download, MayGoFromHttpToEither) {
  server_->putPage("/page", "the file");

  EXPECT_EQ(failureOf(server_->http("/to-http")), kNone);

  EXPECT_EQ(downloaded(), "the file");
}

TEST_F(Download, StopsAtTheBytesThatWereAnnounced) {
  server_->putPage("/file", "12345678");

  EXPECT_EQ(failureOf(server_->https("/file"), 7), Failure(-1103, "NSURLErrorDomain"));
}

TEST_F(Download, OfJustTheBytesThatWereAnnouncedIsWhole) {
  server_->putPage("/file", "12345678");

  EXPECT_EQ(failureOf(server_->https("/file"), 8), kNone);
}

TEST_F(Download, ThatNeverEndsIsStopped) {
  EXPECT_EQ(failureOf(server_->https("/endless")), Failure(-1103, "NSURLErrorDomain"));
  EXPECT_LE(downloaded().size(), kEnough);
}

TEST_F(Download, EndsWhenNobodyWantsItAnyMore) {
  int reports = 0;

  const Failure failure = failureOf(server_->https("/drip"), kEnough,
                                    [&](std::uint64_t, std::uint64_t) { return ++reports < 3; });

  EXPECT_EQ(failure, Failure(4007, "SUSparkleErrorDomain"));
}

struct Misbehaviour {
  const char* path;
  std::int64_t code;
};

class BadServer : public Download, public testing::WithParamInterface<Misbehaviour> {};

TEST_P(BadServer, IsAnError) { EXPECT_EQ(failureOf(server_->https(GetParam().path)).first, GetParam().code); }

INSTANTIATE_TEST_SUITE_P(Paths, BadServer,
                         testing::Values(Misbehaviour{"/missing", 256}, Misbehaviour{"/choices", 256},
                                         Misbehaviour{"/loop", -1007}, Misbehaviour{"/hang-up", -1005},
                                         Misbehaviour{"/hang-up-half-way", -1005},
                                         Misbehaviour{"/no-http", -1017}, Misbehaviour{"/to-a-file", -1002}));

TEST_F(Download, NeverWritesOverAFileThatIsThere) {
  server_->putPage("/file", "new");
  folder_.write("archive", "old");

  EXPECT_EQ(failureOf(server_->https("/file")), Failure(EEXIST, "NSPOSIXErrorDomain"));
  EXPECT_EQ(downloaded(), "old");
}

TEST_F(Download, TrustsNobodyElse) {
  fs::remove(folder_ / "machine/etc/ssl/cert.pem");
  server_->putPage("/file", "new");

  EXPECT_EQ(failureOf(server_->https("/file")), Failure(-1202, "NSURLErrorDomain"));
}

}  // namespace
}  // namespace karno::platform::updates
