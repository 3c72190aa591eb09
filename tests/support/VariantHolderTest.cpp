#include "support/VariantHolder.h"

#include <comdef.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace vantrel::tests {

namespace {

// A holder consists of just its VARIANT, so a test can give it a type that no operation produces.
static_assert(std::is_standard_layout_v<VariantHolder> && sizeof(VariantHolder) == sizeof(VARIANT));
VARIANT& Inside(VariantHolder& holder) {
    return reinterpret_cast<VARIANT&>(holder);
}

} // namespace

TEST(VariantHolder, IntegersKeepTheTypesThatCanHoldThem) {
    const struct {
        VARTYPE before, after;
        std::int32_t number, value;
    } cases[] = {{VT_EMPTY, VT_I4, 5, 5}, {VT_I4, VT_I4, -7, -7},   {VT_ERROR, VT_ERROR, 5, 5},
                 {VT_I2, VT_I4, 1, 1},    {VT_BOOL, VT_BOOL, 0, 0}, {VT_BOOL, VT_BOOL, 5, VARIANT_TRUE}};
    for (const auto& [before, after, number, value] : cases) {
        VariantHolder holder;
        V_VT(&Inside(holder)) = before;
        V_I4(&Inside(holder)) = 0x5555;
        holder.AssignInteger(number);
        VARIANT result;
        holder.DetachTo(&result);
        EXPECT_EQ(V_VT(&result), after);
        EXPECT_EQ(after == VT_BOOL ? V_BOOL(&result) : V_I4(&result), value) << before;
        EXPECT_EQ(V_VT(&Inside(holder)), VT_EMPTY);
    }
}

TEST(VariantHolder, DetachHandsTheTextOver) {
    PROPVARIANT text;
    std::memset(&text, 0xEE, sizeof text); // overwritten, not cleared
    {
        VariantHolder holder;
        holder.AssignText(L"replaced");
        holder.AssignText(L"640 x 480");
        holder.DetachTo(&text);
        EXPECT_EQ(V_VT(&Inside(holder)), VT_EMPTY);
        holder.AssignText(nullptr);
        EXPECT_EQ(V_VT(&Inside(holder)), VT_BSTR);
        EXPECT_EQ(V_BSTR(&Inside(holder)), nullptr);
    }
    ASSERT_EQ(text.vt, VT_BSTR);
    EXPECT_STREQ(text.bstrVal, L"640 x 480");
    EXPECT_EQ(PropVariantClear(&text), S_OK);
}

TEST(VariantHolder, RaisesWhatCannotBeCleared) {
    VariantHolder holder;
    V_VT(&Inside(holder)) = 0x0FFF;
    EXPECT_THROW(holder.AssignText(L"text"), _com_error);
    EXPECT_THROW(holder.AssignInteger(1), _com_error);
    V_VT(&Inside(holder)) = VT_EMPTY;
}

} // namespace vantrel::tests
