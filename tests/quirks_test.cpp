#include "tests/interleaving.h"

#include <malloc.h>

// What the entries in quirks/ are for, where no other test would miss them. Runs in both of Qt's
// render loops.

class QuirksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The picture enters a hidden window, then a shown one, and goes; then the first is shown.
    void itemGoesWhileAnEarlierWindowIsHidden()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        const QPointer<QQuickItem> videoItem = host.view()->videoItem;
        host.setShown(false);
        hideAndPark(host);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(int(host.record.attached), 1);
        host.control->saveObject();

        const auto first = std::exchange(host.window, std::make_unique<QQuickWindow>());
        host.window->resize(first->size());
        host.window->show();
        host.item = nullptr; // stays in the first window
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "RGBW");

        mallopt(M_PERTURB, 0xa5); // what has been freed holds no sense any more
        delete host.view()->parentItem;
        QVERIFY(!videoItem); // nothing waits for a window that may never be shown again
        std::atomic<bool> synchronized = false; // from the render thread
        connect(
            first.get(), &QQuickWindow::afterSynchronizing, first.get(),
            [&] { synchronized = true; }, Qt::DirectConnection);
        first->show();
        AWAIT(synchronized);
        mallopt(M_PERTURB, 0);
    }
};

PLAYER_TEST_MAIN(QuirksTest)
#include "quirks_test.moc"
