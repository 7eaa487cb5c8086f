#ifndef BAR_H
#define BAR_H

#include <QtWidgets/QWidget>

#include <functional>

class QLabel;

/// A slider that goes to where it is clicked, follows the pointer that is held down, and tells what
/// is under one that is not.
class Bar : public QWidget
{
    Q_OBJECT

public:
    /// `textAt` says what a part of the bar, 0 to 1, stands for. What is beyond `mark` is warned
    /// of.
    explicit Bar(std::function<QString(double)> textAt, double mark = 1);

    void setValue(double part); ///< 0 to 1; while it is held down, the pointer has the last word

    QSize sizeHint() const override { return {80, 20}; }

Q_SIGNALS:
    void moved(double part); ///< by the user

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    double partAt(double x) const;
    void goTo(double x);
    void showText(double x);

    std::function<QString(double)> textAt;
    QLabel *bubble = nullptr; ///< above the bar, in its window
    double mark;
    double value = 0;
    bool held = false;
};

#endif
