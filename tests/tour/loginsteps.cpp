#include "app/account/loginnew.h"
#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "app/shell/choosetools.h"
#include "tests/tour/guide.h"
#include "tests/tour/steps.h"

void tourLogin(Guide &guide)
{
    guide.step(QStringLiteral("登录失败"));
    K::instance()->openStartWindow(0);
    auto *login = guide.waitForWindow<LoginNew>(QStringLiteral("the login window opens"));
    guide.typeInto(login, "accountEdit", QStringLiteral("demo01"));
    guide.typeInto(login, "passwordEdit", QStringLiteral("wrong"));
    guide.picture(login, QStringLiteral("login"));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("login-refused"));
    guide.click(login, "loginButton");
    guide.check(guide.boxText() == QStringLiteral("账号或密码错误"),
                QStringLiteral("a wrong password shows the service's own text"));

    guide.step(QStringLiteral("登录"));
    guide.typeInto(login, "passwordEdit", QStringLiteral("abc123"));
    guide.click(login, "loginButton");
    guide.waitFor([] { return !AccountContext::shopList.isEmpty(); },
                  QStringLiteral("the account is known"));
    guide.check(AccountContext::shopList.size() == 3, QStringLiteral("it has three branches"));
    guide.picture(login, QStringLiteral("login-succeeded"));
    auto *launcher = guide.waitForWindow<ChooseTools>(QStringLiteral("the launcher opens"));
    launcher->resize(K::scaledPx(760), K::scaledPx(560)); // a virtual screen is small
    guide.picture(launcher, QStringLiteral("launcher"));
}
