#include "json_schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "karnoctl/diagnose/causes.h"
#include "karnoctl_documents.h"
#include "log/date_texts.h"
#include "self_check/self_check_fixture.h"

namespace karno::karnoctl {
namespace {

using nlohmann::json;
using test::violationsOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

json schemaOf(const std::string& verb) {
  return json::parse(test::textOfSource("docs/schema/karnoctl-" + verb + ".json"));
}

class JsonOfKarnoctl : public test::SelfCheckedMachine, public testing::WithParamInterface<const char*> {
 protected:
  // What is wrong with what the verb prints for scripts.
  std::vector<std::string> violations() {
    terminal_.run({GetParam(), "--json"});
    return violationsOf(schemaOf(GetParam()), json::parse(terminal_.out()));
  }
};

TEST_P(JsonOfKarnoctl, IsAsItsSchemaSays) {
  machine_.withSystem("14.5", "arm64").withFuse("4.4.0").withEmbeddedBuilds();
  machine_.withAdmin("USE_FILE_PROVIDER", "NO").withAdmin("UPDATES_ENABLED", true);
  machine_.processTable.add(5001, {.executablePath = "/bin/bash", .startDate = std::nullopt});
  machine_.files.addFile(test::kLogFile,
                         stringForLogDate(test::kStartOfTest) +
                             " (4242) [INFO] Startup[LAUNCH] Launched Karno.app (pid: 5001)\n" +
                             stringForLogDate(test::kStartOfTest) +
                             " (4242) [INFO] Main: Need to install Fuse\n");

  EXPECT_THAT(violations(), IsEmpty());
}

TEST_P(JsonOfKarnoctl, IsAsItsSchemaSaysWhereNextToNothingIsKnown) {
  machine_.files.addFile("/Library/Managed Preferences/it.vantul.KarnoAdmin.plist", "no list");
  machine_.bundles.main().info.erase("CFBundleShortVersionString");
  machine_.processTable.add(5001, {.executablePath = "/bin/bash"});

  EXPECT_THAT(violations(), IsEmpty());
}

TEST_P(JsonOfKarnoctl, IsAsItsSchemaSaysWithoutALauncher) {
  machine_.processTable.remove(test::FakeProcessTable::kLauncher);
  machine_.bundles.main().setPath("/Users/tester/Downloads/Karno.app");

  EXPECT_THAT(violations(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, JsonOfKarnoctl, testing::Values("status", "explain", "self-check"));

// Unlike those it has nothing to print without a log.
using JsonOfDiagnose = test::SelfCheckedMachine;

TEST_F(JsonOfDiagnose, IsAsItsSchemaSays) {
  machine_.files.addFile(test::kLogFile, stringForLogDate(test::kStartOfTest) +
                                             " (4242) [WARN] Fuse[SYSTEM] Fuse is not installed\n" +
                                             stringForLogDate(test::kStartOfTest) +
                                             " (4242) [INFO] Main: Need to install Fuse\n");

  terminal_.run({"diagnose", "--json"});

  EXPECT_THAT(violationsOf(schemaOf("diagnose"), json::parse(terminal_.out())), IsEmpty());
}

TEST_F(JsonOfDiagnose, NamesEveryCauseInItsSchema) {
  json names = json::array();
  for (const Cause& cause : causes()) names.push_back(cause.name);

  EXPECT_EQ(schemaOf("diagnose")["properties"]["causes"]["items"]["properties"]["name"]["enum"], names);
}

// Whoever gives a verb --json writes down what it prints.
TEST(KarnoctlSchemas, AreThereForEveryVerbThatSpeaksJson) {
  std::vector<std::string> without;
  for (const std::string& verb : test::verbsOfTool()) {
    if (test::optionsOfTool(verb).contains("--json") && schemaOf(verb).empty()) without.push_back(verb);
  }

  EXPECT_THAT(without, IsEmpty());
}

TEST(JsonSchemas, AreHeldAgainstEveryPart) {
  const json schema = json::parse(R"({
    "type": "object", "required": ["a"], "additionalProperties": false,
    "properties": {"a": {"type": ["integer", "null"], "minimum": 0},
                   "b": {"type": "array", "items": {"enum": ["x", null]}},
                   "c": {"const": 1}}})");

  EXPECT_THAT(violationsOf(schema, json::parse(R"({"a": null, "b": ["x", null], "c": 1})")), IsEmpty());
  EXPECT_THAT(violationsOf(schema, json::parse(R"([])")), ElementsAre(StartsWith(": type")));
  EXPECT_THAT(violationsOf(schema, json::parse(R"({})")), ElementsAre(StartsWith(": required")));
  EXPECT_THAT(violationsOf(schema, json::parse(R"({"a": "1"})")), ElementsAre(StartsWith("/a: type")));
  EXPECT_THAT(violationsOf(schema, json::parse(R"({"a": -1})")), ElementsAre(StartsWith("/a: minimum")));
  EXPECT_THAT(violationsOf(schema, json::parse(R"({"a": 1, "b": ["y"]})")),
              ElementsAre(StartsWith("/b/0: enum")));
  EXPECT_THAT(violationsOf(schema, json::parse(R"({"a": 1, "c": 2})")), ElementsAre(StartsWith("/c: const")));
  EXPECT_THAT(violationsOf(schema, json::parse(R"({"a": 1, "d": 2})")),
              ElementsAre(StartsWith(": additionalProperties")));
  EXPECT_THROW(violationsOf(json::parse(R"({"oneOf": []})"), json()), std::invalid_argument);
}

}  // namespace
}  // namespace karno::karnoctl
