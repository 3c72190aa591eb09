#include "support/VariantHolder.h"

#include <comdef.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace vantrel::tests {

namespace {

// The VARIANT is all there is in a holder, so that a test can give it a type that no operation makes.
static_assert(std::is_standard_layout_v<VariantHolder> && sizeof(VariantHolder) == sizeof(VARIANT));
VARIANT& Inside(VariantHolder& holder) {
    return reinterpret_cast<VARIANT&>(holder);
}

template <class Action>
HRESULT Raised(Action action) {
    try {
        action();
    } catch (const _com_error& error) {
        return error.Error();
    }
    return S_OK;
}

} // namespace

TEST(VariantHolder, IntegersKeepTheTypesThatCanHoldThem) {
    const struct {
        VARTYPE before;
        std::int32_t number;
        VARTYPE after;
        std::int32_t value;
    } cases[] = {
        {VT_EMPTY, 5, VT_I4, 5},
        {VT_I4, -7, VT_I4, -7},
        {VT_ERROR, 5, VT_ERROR, 5},
        {VT_BOOL, 0, VT_BOOL, 0},
        {VT_BOOL, 5, VT_BOOL, VARIANT_TRUE},
        {VT_I2, 70000, VT_I4, 70000},
    };
    for (const auto& [before, number, after, value] : cases) {
        VariantHolder holder;
        V_VT(&Inside(holder)) = before;
        V_I4(&Inside(holder)) = 0x5555;
        holder.AssignInteger(number);
        VARIANT result;
        holder.DetachTo(&result);
        EXPECT_EQ(V_VT(&result), after);
        EXPECT_EQ(after == VT_BOOL ? V_BOOL(&result) : V_I4(&result), value) << before;
    }
}

TEST(VariantHolder, DetachHandsTheValueOver) {
    PROPVARIANT text;
    std::memset(&text, 0xEE, sizeof text); // overwritten, never cleared
    {
        VariantHolder holder;
        holder.AssignInteger(1);
        holder.AssignText(L"replaced");
        holder.AssignText(L"640 x 480");
        holder.DetachTo(&text);
        EXPECT_EQ(V_VT(&Inside(holder)), VT_EMPTY);
    }
    ASSERT_EQ(text.vt, VT_BSTR);
    EXPECT_STREQ(text.bstrVal, L"640 x 480");
    EXPECT_EQ(SysStringLen(text.bstrVal), 9u);
    EXPECT_EQ(PropVariantClear(&text), S_OK);

    VariantHolder holder;
    holder.AssignText(L"replaced");
    holder.AssignText(nullptr);
    VARIANT nothing;
    holder.DetachTo(&nothing);
    EXPECT_EQ(V_VT(&nothing), VT_BSTR);
    EXPECT_EQ(V_BSTR(&nothing), nullptr);
    EXPECT_EQ(V_VT(&Inside(holder)), VT_EMPTY);
}

TEST(VariantHolder, RaisesWhatCannotBeCleared) {
    VariantHolder holder;
    V_VT(&Inside(holder)) = 0x0FFF;
    EXPECT_EQ(Raised([&] { holder.AssignText(L"text"); }), DISP_E_BADVARTYPE);
    EXPECT_EQ(Raised([&] { holder.AssignInteger(1); }), DISP_E_BADVARTYPE);
    V_VT(&Inside(holder)) = VT_EMPTY;
}

} // namespace vantrel::tests
