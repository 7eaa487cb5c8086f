#include "tests/fixture.h"

class CommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void first_data()
    {
        forBothKinds([](const char *name, Host::Kind kind) { QTest::newRow(name) << kind; });
    }
    void first()
    {
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.state(), 3);
        AWAIT_EQUAL(host.overlay(), QString());
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > GST_SECOND);
    }
};

PLAYER_TEST_MAIN(CommandsTest)
#include "commands_test.moc"
