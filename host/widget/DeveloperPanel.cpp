#include "DeveloperPanel.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QListView>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

DeveloperPanel::DeveloperPanel(Developer &theDeveloper, MediaPlayer::PlayerWidget &theFilm)
    : developer(theDeveloper), film(theFilm)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 0);
    column->addWidget(makeSwitches());
    column->addWidget(makeRecord(), 3);
    column->addWidget(makeAnswers(), 1);
}

QWidget *DeveloperPanel::makeRecord()
{
    auto *table = new QTableView;
    table->setModel(developer.record());
    table->setFocusPolicy(Qt::NoFocus);
    table->setSelectionMode(QAbstractItemView::NoSelection);
    table->setFrameShape(QFrame::NoFrame);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    table->horizontalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->setColumnWidth(0, fontMetrics().horizontalAdvance(QStringLiteral("keepAspectRatio  ")));
    return table;
}

QWidget *DeveloperPanel::makeAnswers()
{
    auto *answers = new QListView;
    answers->setModel(developer.answers());
    answers->setFocusPolicy(Qt::NoFocus);
    answers->setSelectionMode(QAbstractItemView::NoSelection);
    answers->setFrameShape(QFrame::NoFrame);
    return answers;
}

void DeveloperPanel::makeSwitch(QVBoxLayout *column, const QString &text, bool on,
                                const std::function<void(bool)> &run)
{
    auto *box = new QCheckBox(text);
    box->setFocusPolicy(Qt::NoFocus);
    box->setChecked(on);
    connect(box, &QCheckBox::toggled, this, run);
    column->addWidget(box);
}

QWidget *DeveloperPanel::makeSwitches()
{
    auto *switches = new QWidget;
    auto *column = new QVBoxLayout(switches);
    column->setContentsMargins(0, 0, 0, 0);
    makeSwitch(column, tr("Show the picture"), true, [this](bool on) { film.setVisible(on); });
    makeSwitch(column, tr("Hiding it pauses"), false, [this](bool on) {
        film.setWhenHidden(on ? MediaPlayer::Player::Pause : MediaPlayer::Player::GoOn);
    });
    makeSwitch(column, tr("Stretch it"), false, [this](bool on) {
        film.setAspectRatioMode(on ? Qt::IgnoreAspectRatio : Qt::KeepAspectRatio);
    });
    makeSwitch(column, tr("Trace on standard output"), developer.isTracing(),
               [this](bool on) { developer.setTracing(on); });
    return switches;
}

void DeveloperPanel::showEvent(QShowEvent *)
{
    developer.setWatching(true);
}

void DeveloperPanel::hideEvent(QHideEvent *)
{
    developer.setWatching(false);
}
