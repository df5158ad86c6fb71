#include "platform/value.h"

#include <gtest/gtest.h>

#include "fake_clock.h"
#include "printing.h"

namespace karno::platform {
namespace {

struct Printed {
  Value value;
  std::string text;
};

void PrintTo(const Printed& printed, std::ostream* out) { *out << printed.text; }

class ValueDescription : public ::testing::TestWithParam<Printed> {};

TEST_P(ValueDescription, IsWhatTheLogPrints) { EXPECT_EQ(GetParam().value.description(), GetParam().text); }

INSTANTIATE_TEST_SUITE_P(
    Alone, ValueDescription,
    ::testing::Values(Printed{true, "1"}, Printed{false, "0"}, Printed{0, "0"}, Printed{-42, "-42"},
                      Printed{std::int64_t{9'223'372'036'854'775'807}, "9223372036854775807"},
                      Printed{0.5, "0.5"}, Printed{"", ""}, Printed{"two words", "two words"},
                      Printed{"größe", "größe"}, Printed{test::kStartOfTest, "2024-03-05 13:07:09 +0000"},
                      Printed{Value::Data{}, "{length = 0, bytes = 0x}"},
                      Printed{Value::Data{std::byte{0}, std::byte{255}}, "{length = 2, bytes = 0x00ff}"}));

INSTANTIATE_TEST_SUITE_P(
    Containers, ValueDescription,
    ::testing::Values(
        Printed{Value::Array{}, "(\n)"}, Printed{Value::Dictionary{}, "{\n}"},
        Printed{Value::Array{"one", 2, "two words", ""},
                "(\n    one,\n    2,\n    \"two words\",\n    \"\"\n)"},
        Printed{Value::Dictionary{{"b", true}, {"a", "x"}}, "{\n    a = x;\n    b = 1;\n}"},
        Printed{Value::Dictionary{{"list", Value::Array{1}}}, "{\n    list =     (\n        1\n    );\n}"},
        Printed{Value::Array{Value(Value::Array{1})}, "(\n        (\n        1\n    )\n)"},
        Printed{Value::Array{-1, 0.5, "1.0", "com.example", "a_b", "/usr"},
                "(\n    \"-1\",\n    \"0.5\",\n    \"1.0\",\n    \"com.example\",\n    \"a_b\",\n"
                "    \"/usr\"\n)"},
        Printed{Value::Array{"say \"hi\"\n"}, "(\n    \"say \\\"hi\\\"\\n\"\n)"}));

// The second in which the smallest moment lies began before it.
TEST(ValueDescription, OfTheFarthestMomentsIsTheirDate) {
  EXPECT_EQ(Value(Date::min()).description(), "1677-09-21 00:12:43 +0000");
  EXPECT_EQ(Value(Date::max()).description(), "2262-04-11 23:47:16 +0000");
}

TEST(ValueDescription, OfDeepNestingEnds) {
  Value value = 1;
  for (int i = 0; i < 1000; ++i) value = Value::Array{value};

  EXPECT_LT(value.description().size(), 100'000U);
}

TEST(Value, CountsBooleansIntegersAndFloatingPointAsNumbers) {
  EXPECT_TRUE(Value(true).isNumber());
  EXPECT_TRUE(Value(1).isNumber());
  EXPECT_TRUE(Value(1.5).isNumber());
  EXPECT_FALSE(Value("1").isNumber());
  EXPECT_FALSE(Value(Value::Array{}).isNumber());
}

TEST(Value, TellsABooleanFromTheNumberThatPrintsAlike) {
  EXPECT_NE(Value(true), Value(1));
  EXPECT_EQ(Value(1), Value(std::int64_t{1}));
}

}  // namespace
}  // namespace karno::platform
