#include "zefcore/base/ZEFString.h"

#include <gtest/gtest.h>

#include <stdexcept>

TEST(ZEFString, NullIsOneObjectByAddress) {
    EXPECT_TRUE(ZEFString::m_null.isNull());
    EXPECT_EQ(ZEFString::m_null, "!!! NULL String !!!");
    EXPECT_FALSE(ZEFString("!!! NULL String !!!").isNull());
    const ZEFString copy(ZEFString::m_null);
    EXPECT_FALSE(copy.isNull());
    EXPECT_FALSE(ZEFString().isNull());
    EXPECT_TRUE(ZEFString().empty());
}

TEST(ZEFString, ConstructorsFollowTheStringForms) {
    const std::string text = "abcdefgh";
    EXPECT_EQ(ZEFString(text, 2, 3), "cde");
    EXPECT_EQ(ZEFString(text, 6, 10), "gh");
    EXPECT_EQ(ZEFString(text, 6, -1), "gh");
    EXPECT_EQ(ZEFString("abcdefgh", 4), "abcd");
    EXPECT_EQ(ZEFString(3, 'z'), "zzz");
    // The std::string form keeps an embedded zero; the C-string form would stop there.
    EXPECT_EQ(ZEFString(std::string("ab\0c", 4)).size(), 4u);
    EXPECT_EQ(ZEFString(text.data() + 1, text.data() + 4), "bcd");
    // Bad arguments: the string's exceptions, or an empty string where no text is given.
    EXPECT_THROW(ZEFString(text, 9, 1), std::out_of_range);
    EXPECT_THROW(ZEFString(text, -1, 1), std::out_of_range);
    EXPECT_THROW(ZEFString("abc", -2), std::length_error);
    EXPECT_THROW(ZEFString(-1, 'z'), std::length_error);
    EXPECT_EQ(ZEFString(static_cast<const char *>(nullptr)), "");
    EXPECT_EQ(ZEFString(text.data() + 4, text.data() + 1), "");
}
