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
    MediaPlayer::Player *film = video->player();
    using P = MediaPlayer::Player;
    QObject::connect(film, &P::durationChanged, bar, &QSlider::setMaximum);
    QObject::connect(film, &P::positionChanged, bar, &QSlider::setValue);
    QObject::connect(bar, &QSlider::sliderMoved, film, &P::setPosition);
    QObject::connect(film, &P::errorChanged, [&] { window.setWindowTitle(film->errorString()); });
    film->setSource(QUrl::fromLocalFile(app.arguments().value(1)));
    film->play();
    window.show();
    return app.exec();
}
