#include <MediaPlayer/PlayerWidget.h>
#include <QtWidgets/QApplication>
#include <QtWidgets/QSlider>
#include <QtWidgets/QVBoxLayout>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *video = new MediaPlayer::PlayerWidget;
    layout->addWidget(video, 1);
    auto *bar = new QSlider(Qt::Horizontal);
    layout->addWidget(bar);
    MediaPlayer::Player *player = video->player();
    using P = MediaPlayer::Player;
    QObject::connect(player, &P::durationChanged, bar, &QSlider::setMaximum);
    QObject::connect(player, &P::positionChanged, bar, &QSlider::setValue);
    QObject::connect(bar, &QSlider::sliderMoved, player, &P::setPosition);
    QObject::connect(player, &P::errorChanged, [&] { window.setWindowTitle(player->errorString()); });
    player->setSource(QUrl::fromLocalFile(app.arguments().value(1)));
    player->play();
    window.show();
    return app.exec();
}
