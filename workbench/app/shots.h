#pragma once

#include <QHash>
#include <QObject>
#include <QString>

class QWidget;

// Saves a picture of every window and dialog that the application shows: once when it has settled
// and again when the application ends or the window goes earlier. NN-NAME.png and NN-NAME-end.png,
// numbered in the order in which windows came up.
class Shots : public QObject
{
    Q_OBJECT
public:
    // The folder is made when it is missing. False with a reason when pictures cannot go there.
    bool open(const QString& folder, QString* error);

    void saveAll();  // of all windows that are open now, as the end of the run

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void appeared(QWidget* window);
    void save(QWidget* window, const QString& suffix);

    QString m_folder;
    struct Seen
    {
        QString name;          // empty before the first picture
        bool painted = false;  // has been on the screen since it was shown last
        bool saved = false;    // since then
    };

    QHash<QObject*, Seen> m_seen;  // windows that were shown
    int m_count = 0;
};
