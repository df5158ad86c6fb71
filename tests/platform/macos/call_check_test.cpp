#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include "call_types.h"
#include "stand_in.h"

namespace karno::platform::trial {
namespace {

objc::Boolean flag(objc::Id, objc::Sel, objc::Integer) { return 1; }

class CallCheck : public testing::Test {
 protected:
  static Class receiverClass() {
    static const Class made = StandInClass("StandInReceiver").method("code", "C@:q", flag).registerClass();
    return made;
  }

  void call(const std::string& types) { checkCall(receiver_.get(), sel_registerName("code"), types); }

  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::Object receiver_ = instanceOf(receiverClass());
};

TEST_F(CallCheck, LetsACallOfTheMethodsTypesPass) { call("B@:q"); }

TEST_F(CallCheck, NoticesAnArgumentOfAnotherWidth) { EXPECT_NONFATAL_FAILURE(call("B@:i"), "B@:q"); }

TEST_F(CallCheck, NoticesABooleanForANumber) { EXPECT_NONFATAL_FAILURE(call("B@:B"), "B@:q"); }

TEST_F(CallCheck, NoticesANumberWithoutASign) { EXPECT_NONFATAL_FAILURE(call("B@:Q"), "B@:q"); }

TEST_F(CallCheck, NoticesAMissingArgument) { EXPECT_NONFATAL_FAILURE(call("B@:"), "B@:q"); }

TEST_F(CallCheck, NoticesAnotherResult) { EXPECT_NONFATAL_FAILURE(call("v@:q"), "B@:q"); }

TEST_F(CallCheck, NoticesAMessageThatNobodyAnswers) {
  EXPECT_NONFATAL_FAILURE(checkCall(receiver_.get(), sel_registerName("domain"), "@@:"),
                          "Nobody answers StandInReceiver domain");
}

TEST_F(CallCheck, NoticesAStandInWhoseEncodingIsNotItsFunctions) {
  EXPECT_NONFATAL_FAILURE(StandInClass("StandInMistaken").method("code", "C@:Q", flag), "code");
}

TEST_F(CallCheck, ReadsTheEncodingsOfTheCompiler) {
  EXPECT_EQ(simplifiedEncoding("v24@0:8@16"), "v@:@");
  EXPECT_EQ(simplifiedEncoding("@48@0:8@16Q24{_NSRange=QQ}32"), "@@:@Q{16}");
  EXPECT_EQ(simplifiedEncoding("Vv16@0:8"), "v@:");
  EXPECT_EQ(simplifiedEncoding("r^v16@0:8"), "^@:");
  EXPECT_EQ(simplifiedEncoding("C32@0:8@16^@24"), "B@:@^@");
  EXPECT_EQ(simplifiedEncoding("{_NSRect={_NSPoint=dd}{_NSSize=dd}}16@0:8"), "{32}@:");
}

}  // namespace
}  // namespace karno::platform::trial
