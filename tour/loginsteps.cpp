#include "app/account/loginnew.h"
#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "app/shell/choosetools.h"
#include "app/shell/startwindow.h"
#include "tests/support/text.h"
#include "tour/guide.h"
#include "tour/steps.h"

void tourLogin(Guide &guide)
{
    guide.step("登录失败"_s);
    K::instance()->openStartWindow(int(StartMode::Login));
    auto *login = guide.waitForWindow<LoginNew>("the login window opens"_s);
    guide.typeInto(login, "accountEdit", "demo01"_s);
    guide.typeInto(login, "passwordEdit", "wrong"_s);
    guide.picture(login, "login"_s);
    guide.answerNextBox("确定"_s, "login-refused"_s);
    guide.click(login, "loginButton");
    guide.check(guide.boxText() == "账号或密码错误"_s,
                "a wrong password shows the service's own text"_s);

    guide.step("登录"_s);
    guide.typeInto(login, "passwordEdit", "abc123"_s);
    guide.click(login, "loginButton");
    guide.waitFor([] { return !AccountContext::shopList.isEmpty(); }, "the account is known"_s);
    guide.check(AccountContext::shopList.size() == 3, "it has three branches"_s);
    guide.picture(login, "login-succeeded"_s);
    auto *launcher = guide.waitForWindow<ChooseTools>("the launcher opens"_s);
    launcher->resize(K::scaledPx(760), K::scaledPx(560)); // a virtual screen is small
    guide.picture(launcher, "launcher"_s);
}
