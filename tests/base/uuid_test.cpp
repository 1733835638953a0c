#include "base/uuid.h"

#include <unordered_set>

#include <gtest/gtest.h>

using orbinex::UUID;

namespace {

constexpr UUID example = UUID::literal("E2C362B1-CE63-4C23-95D9-36653EBF89A6");

TEST(UUIDText, isReadInEitherCaseAndWrittenInUpperCase) {
    const auto lower = UUID::parse("e2c362b1-ce63-4c23-95d9-36653ebf89a6");
    ASSERT_TRUE(lower);
    EXPECT_EQ(*lower, example);
    EXPECT_EQ(lower->text(), "E2C362B1-CE63-4C23-95D9-36653EBF89A6");
}

TEST(UUIDText, isNothingUnlessCanonical) {
    for (const char* const text :
         {"", "E2C362B1CE634C2395D936653EBF89A6", "{E2C362B1-CE63-4C23-95D9-36653EBF89A6}",
          "E2C362B1-CE63-4C23-95D9-36653EBF89A", "E2C362B1-CE63-4C23-95D9-36653EBF89A6 ",
          "G2C362B1-CE63-4C23-95D9-36653EBF89A6", "E2C362B1CE63--4C23-95D9-36653EBF89A6",
          "+2C362B1-CE63-4C23-95D9-36653EBF89A6"}) {
        EXPECT_FALSE(UUID::parse(text)) << text;
    }
}

TEST(UUIDBytes, standInTheOrderOfTheText) {
    EXPECT_EQ(example.bytes[0], 0xE2);
    EXPECT_EQ(example.bytes[15], 0xA6);
    EXPECT_EQ(UUID::fromBytes(example.bytes), example);
    EXPECT_FALSE(UUID::fromBytes(orbinex::ByteView(example.bytes).first(15)));
    EXPECT_FALSE(UUID::fromBytes(orbinex::Bytes(17)));
}

TEST(UUIDRandom, isVersionFourAndRepeatsOnlyWithItsGenerator) {
    std::unordered_set<UUID> seen;
    for (int i = 0; i < 1000; ++i) {
        const UUID id = UUID::random();
        EXPECT_EQ(id.text()[14], '4');
        EXPECT_NE(std::string("89AB").find(id.text()[19]), std::string::npos);
        EXPECT_TRUE(seen.insert(id).second);
    }
    std::mt19937_64 first(7);
    std::mt19937_64 second(7);
    EXPECT_EQ(UUID::random(first), UUID::random(second));
    EXPECT_NE(UUID::random(first), UUID::random(first));
}

}  // namespace
