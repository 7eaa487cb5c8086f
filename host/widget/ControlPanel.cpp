#include "ControlPanel.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QSlider>
#include <QtWidgets/QSpinBox>

#include <cmath>

ControlPanel::ControlPanel(Session &theSession) : session(theSession)
{
    auto *form = new QFormLayout(this);
    const QString pixels = tr(" px");
    auto *margins = new QGridLayout;
    // In the order of the record: left, top, right, bottom; laid out as they lie in the picture.
    const int places[4][2] = {{1, 0}, {0, 1}, {1, 2}, {2, 1}};
    for (int i = 0; i < 4; ++i) {
        crop[i] = makeSpinBox(-2000, 2000, pixels);
        margins->addWidget(crop[i], places[i][0], places[i][1]);
        connect(crop[i], &QSpinBox::valueChanged, this, &ControlPanel::applyCrop);
    }
    form->addRow(tr("Crop"), margins);

    opacity = new QSlider(Qt::Horizontal);
    opacity->setRange(0, 100);
    connect(opacity, &QSlider::valueChanged, this, [this](int percent) {
        if (session.player())
            session.player()->setOpacity(percent / 100.0);
    });
    form->addRow(tr("Opacity"), opacity);

    mirrorSideways = new QCheckBox(tr("left to right"));
    mirrorUpright = new QCheckBox(tr("top to bottom"));
    angle = makeSpinBox(-360, 360, tr("°"));
    angle->setSingleStep(15);
    connect(mirrorSideways, &QCheckBox::toggled, this, &ControlPanel::applyTransform);
    connect(mirrorUpright, &QCheckBox::toggled, this, &ControlPanel::applyTransform);
    connect(angle, &QSpinBox::valueChanged, this, &ControlPanel::applyTransform);
    form->addRow(tr("Mirror"), mirrorSideways);
    form->addRow(QString(), mirrorUpright);
    form->addRow(tr("Rotate"), angle);

    keepAspect = makeCheckBox(tr("keep the picture's shape"), &Player::setKeepAspect);
    pauseOnHide = makeCheckBox(tr("hiding pauses"), &Player::setPauseOnHide);
    resumeOnShow = makeCheckBox(tr("showing resumes"), &Player::setResumeOnShow);
    form->addRow(tr("Aspect"), keepAspect);
    form->addRow(tr("Control"), pauseOnHide);
    form->addRow(QString(), resumeOnShow);

    connect(&session, &Session::currentChanged, this, &ControlPanel::followPlayer);
    followPlayer();
}

QSpinBox *ControlPanel::makeSpinBox(int from, int to, const QString &suffix)
{
    auto *box = new QSpinBox;
    box->setRange(from, to);
    box->setSuffix(suffix);
    box->setKeyboardTracking(false);
    return box;
}

QCheckBox *ControlPanel::makeCheckBox(const QString &text, void (Player::*set)(bool))
{
    auto *box = new QCheckBox(text);
    connect(box, &QCheckBox::toggled, this, [this, set](bool on) {
        if (session.player())
            (session.player()->*set)(on);
    });
    return box;
}

void ControlPanel::followPlayer()
{
    if (!session.player())
        return;
    connect(session.player(), &Player::settingsChanged, this, &ControlPanel::showSettings,
            Qt::UniqueConnection);
    showSettings();
}

void ControlPanel::showSettings()
{
    const Player *player = session.player();
    if (!player)
        return;
    const auto show = [](auto *control, auto value) {
        const QSignalBlocker quiet(control);
        if constexpr (std::is_same_v<decltype(value), bool>)
            control->setChecked(value);
        else
            control->setValue(value);
    };
    for (int i = 0; i < 4; ++i)
        show(crop[i], player->crop().at(i));
    show(opacity, int(std::lround(player->opacity() * 100)));
    show(mirrorSideways, (player->flips() & MediaPlayerFlipHorizontal) != 0);
    show(mirrorUpright, (player->flips() & MediaPlayerFlipVertical) != 0);
    show(angle, player->angle());
    show(keepAspect, player->keepsAspect());
    show(pauseOnHide, player->pausesOnHide());
    show(resumeOnShow, player->resumesOnShow());
}

void ControlPanel::applyCrop()
{
    if (session.player())
        session.player()->setCrop(crop[0]->value(), crop[1]->value(), crop[2]->value(),
                                  crop[3]->value());
}

void ControlPanel::applyTransform()
{
    const int flips = (mirrorSideways->isChecked() ? MediaPlayerFlipHorizontal : 0)
        | (mirrorUpright->isChecked() ? MediaPlayerFlipVertical : 0);
    if (session.player())
        session.player()->setTransform(flips, angle->value());
}
