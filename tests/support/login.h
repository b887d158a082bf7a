#pragma once

#include "app/context/accountcontext.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"

/// A studio as at the start, and its account logged in: with three branches, the last of which may
/// not delete whole orders.
inline void logIn(DemoClient *demo)
{
    demo->reset();
    AccountContext::uid = "9001"_s;
    AccountContext::eid = "3101"_s;
    AccountContext::superId = "7001"_s;
    AccountContext::shopId = "101"_s;
    AccountContext::selectedShopId.clear();
    AccountContext::shopList = {
        {"101"_s, "一店"_s, {}, {}}, {"102"_s, "二店"_s, {}, {}}, {"103"_s, "三店"_s, {}, {}}};
}
