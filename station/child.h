#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// A program that the launcher starts. It never outlives the launcher, however that ends.
class Child : public QProcess
{
    Q_OBJECT
public:
    // `name` stands before what the child prints on its standard output, "" prints it as it is.
    Child(const QString& name, QObject* parent);
    ~Child() override;

    void launch(const QString& program, const QStringList& arguments);

    // Asks to end, and ends it by force when it has not within `milliseconds`.
    void stop(int milliseconds);

    bool isRunning() const { return state() != QProcess::NotRunning; }

Q_SIGNALS:
    void line(const QString& text);  // one line of standard output, without its end

private:
    void readLines();

    QString m_name;
};

// A line of the launcher itself on standard error.
void say(const QString& text);
