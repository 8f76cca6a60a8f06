#pragma once

#include <QSplashScreen>
#include <QString>

// The splash screen: name of the product, version, and what is being done. Drawn, so that it is
// sharp on every screen.
class Splash : public QSplashScreen
{
    Q_OBJECT
public:
    Splash();

    void SetText(const QString& text);

protected:
    void drawContents(QPainter* painter) override;

private:
    QString m_Text;
};
