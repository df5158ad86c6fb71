#include "platform/property_lists.h"

#include "world.h"

namespace karno::test {
namespace {

using platform::Date;
using platform::Value;

class PropertyListsContract : public Contract {
 protected:
  platform::PropertyLists& lists_ = services_.propertyLists;
};

Value nested(int levels) {
  Value value(1);
  for (int level = 0; level < levels; ++level) value = Value::Array{value};
  return value;
}

TEST_P(PropertyListsContract, ReadsWhatItWrote) {
  const Value everyKind = Value::Dictionary{{"truth", true},
                                            {"number", std::int64_t{-7}},
                                            {"fraction", 2.5},
                                            {"text", "a <b> & \"c\"\n\xC3\xA4"},
                                            {"date", Date(std::chrono::seconds(1'709'644'029))},
                                            {"data", Value::Data{std::byte{0}, std::byte{255}}},
                                            {"list", Value::Array{1, "two", Value::Array{}}},
                                            {"table", Value::Dictionary{{"", "no key"}}}};

  const auto written = lists_.serialiseAsXML(everyKind);

  ASSERT_TRUE(written);
  EXPECT_EQ(lists_.parse(written.value()).value(), everyKind);
}

TEST_P(PropertyListsContract, ReadsWhatPeopleWrite) {
  const auto read = lists_.parse(
      "<plist version=\"1.0\"><!-- by hand --><array><true/><integer>0x10</integer></array></plist>");

  ASSERT_TRUE(read);
  EXPECT_EQ(read.value(), Value(Value::Array{true, 16}));
}

TEST_P(PropertyListsContract, RefusesWhatIsDamaged) {
  for (const char* bytes : {"", "text", "<plist>", "<plist><dict><key>a</key></dict></plist>", "bplist00"}) {
    const auto read = lists_.parse(bytes);
    ASSERT_FALSE(read) << bytes;
    EXPECT_EQ(read.error().domain(), platform::kCocoaErrorDomain) << bytes;
    EXPECT_EQ(read.error().code(), 3840) << bytes;
  }
}

TEST_P(PropertyListsContract, WritesNothingThatIsNestedWithoutEnd) {
  EXPECT_TRUE(lists_.serialiseAsXML(nested(60)));
  EXPECT_FALSE(lists_.serialiseAsXML(nested(200)));
}

TEST_P(PropertyListsContract, TakesAPlainListForNoArchive) {
  const std::string plain = lists_.serialiseAsXML(Value::Dictionary{{"key", 1}}).value();

  EXPECT_EQ(lists_.unarchiveDictionary(plain).error().domain(), platform::kCocoaErrorDomain);
  EXPECT_EQ(lists_.unarchiveDictionary("text").error().domain(), platform::kCocoaErrorDomain);
}

INSTANTIATE_TEST_SUITE_P(Fake, PropertyListsContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, PropertyListsContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
