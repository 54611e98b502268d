#pragma once

#include <QDialog>

/// Shows the splash image and the product's name and version.
class AboutBox : public QDialog {
    Q_OBJECT

public:
    AboutBox(const QString& splashImage, const QString& productText, QWidget* parent = nullptr);
};
