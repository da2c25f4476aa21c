#pragma once

#include <QMainWindow>

// The application shell: start screen, six work frames, shared progress frame.
class frmMain final : public QMainWindow
{
    Q_OBJECT
public:
    explicit frmMain(QWidget *parent = nullptr);
};
