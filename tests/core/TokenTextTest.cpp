#include "core/TokenText.h"

#include <gtest/gtest.h>

#include "support/RecordingListener.h"
#include "support/Rows.h"

namespace {

using Token = std::vector<char>;

} // namespace

TEST(TokenTextTest, TheTextEndsAtTheFirstZeroByteOrWithTheToken) {
    const Rows<Token, std::string> rows = {
        {token("memory"), "memory"},
        {token(""), ""},
        {Token{}, ""},
        {{'r', 'e', 'a', 'd'}, "read"},
        {{'r', 'e', '\0', 'a', 'd', '\0'}, "re"},
        {{'\0', 'r'}, ""},
        {{'\xFF', '\n', ' ', '\0'}, "\xFF\n "},
    };
    for (const auto& [characters, text] : rows) {
        SCOPED_TRACE(::testing::PrintToString(characters));
        EXPECT_EQ(tokenText(characters), text);
    }
}

TEST(TokenTextTest, ATokenBeginsWithAWordWhateverFollows) {
    for (const Token& begun : {token("cksum"), token("cksums"), token("cksum cksum"),
                               Token{'c', 'k', 's', 'u', 'm'}, Token{'c', 'k', 's', 'u', 'm', '\xFF'}}) {
        SCOPED_TRACE(::testing::PrintToString(begun));
        EXPECT_TRUE(beginsWith(begun, "cksum"));
    }
}

TEST(TokenTextTest, ATokenThatIsShorterOrOtherDoesNot) {
    for (const Token& other :
         {token("cksu"), token(""), Token{}, Token{'c', 'k', 's', 'u'}, token("Cksum"), token("CKSUM"),
          token(" cksum"), token("xcksum"), Token{'c', 'k', 's', '\0', 'u', 'm'}}) {
        SCOPED_TRACE(::testing::PrintToString(other));
        EXPECT_FALSE(beginsWith(other, "cksum"));
    }
}
