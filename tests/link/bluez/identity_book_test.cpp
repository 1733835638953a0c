#include "link/bluez/identity_book.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

const std::string privateAddress = "5A:11:22:33:44:55";
const std::string identityAddress = "00:AA:01:01:00:01";

TEST(IdentityBook, derivesTheSameIdentifierInEveryRun) {
    // Stored trust depends on it: a change of this value would make every trusted phone a stranger.
    EXPECT_EQ(IdentityBook().identifierFor(identityAddress, false).text(),
              "BC0D5097-B6B8-5FCD-8974-DE44461B1FBB");
    EXPECT_EQ(IdentityBook().identifierFor("00:aa:01:01:00:01", false),
              IdentityBook().identifierFor(identityAddress, false));
    EXPECT_NE(IdentityBook().identifierFor(identityAddress, true),
              IdentityBook().identifierFor(identityAddress, false));
}

TEST(IdentityBook, keepsTheIdentifierUnderWhichABondedPhoneWasMet) {
    IdentityBook book;
    const UUID met = book.identifierFor(privateAddress, true);
    EXPECT_TRUE(book.remember(identityAddress, false, met));
    EXPECT_FALSE(book.remember(identityAddress, false, met)) << "no news, nothing to store";

    const IdentityBook restarted(book.stored());
    EXPECT_EQ(restarted.identifierFor(identityAddress, false), met);
    EXPECT_EQ(restarted.stored(), book.stored());
}

TEST(IdentityBook, skipsWhatMakesNoSenseAndStaysSmall) {
    const std::string good = identityAddress + " public 00000000-0000-0000-0000-000000000001\n";
    const IdentityBook book("\n \n\xff\n" + identityAddress + "\n" + identityAddress + " odd 1 2\n" +
                            identityAddress + " public nonsense\n" + good + "00:00 public " + UUID{}.text() +
                            "\n");
    EXPECT_EQ(book.stored(), good);

    std::string flood;
    for (int i = 0; i < 1000; ++i) {
        const std::string number = std::to_string(1000 + i);
        flood += "00:AA:01:01:" + number.substr(0, 2) + ":" + number.substr(2) + " random " +
                 UUID::random().text() + "\n";
    }
    const std::string kept = IdentityBook(flood).stored();
    EXPECT_EQ(static_cast<std::size_t>(std::count(kept.begin(), kept.end(), '\n')), IdentityBook::capacity);
}

}  // namespace
}  // namespace orbinex
