#pragma once

#include <QVector>
#include <stdexcept>

#include "valueframework/iobserver.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"
#include "valueframework/valueselection.h"

// A value tree for one test: a receiver with channels, as a driver would publish them, without a
// driver. One at a time; its values go with it.
class TestTree
{
public:
    enum ChannelKind
    {
        Plain,
        PulseAnalysis  // with a mode and the paths of pulse recordings
    };

    TestTree() { ValueHost::CreateTree(); }
    ~TestTree() { ValueHost::DestroyTree(); }
    TestTree(const TestTree&) = delete;
    TestTree& operator=(const TestTree&) = delete;

    // What a window needs of the receiver itself.
    void AddDevice(const QString& device = "/RX1")
    {
        AddText(device + "/DEVICE_CAPTION", "Receiver 1");
        AddFloat(device + "/FREQUENCY", 100000000.0, "Hz");
        AddSelection(device + "/IFPANSPAN", Numbers({0, 10000, 25000, 1000000, 5000000}, "Hz"), 1000000);
        AddSelection(device + "/DRVCOMMANDS",
                     {{0, "Stop", 0}, {1, "FFM", 0}, {2, "DF", 0}, {3, "Replay", 0}, {14, "Switching", 0}},
                     1);
        AddSelection(device + "/DDF/DF_ENABLED", {{0, "OFF", 0}, {1, "ON", 0}}, 0);
    }

    // What the receiver's own recording is judged by.
    void AddDeviceRecording(const QString& device = "/RX1")
    {
        AddSelection(device + "/RECORDREPLAY/MODE",
                     {{0, "Stop", 0}, {1, "Record", 0}, {2, "Replay", 0}, {3, "Pause", 0}}, 0);
        AddSelection(device + "/RECORDREPLAY/SOURCE", {{0, "IF", 0}, {1, "Audio", 0}, {2, "IF + Audio", 0}},
                     0);
        AddSelection(device + "/AUDIO/AUDIOMODE", {{0, "none", 0}, {1, "48 kHz", 48000}}, 1);
        AddSelection(device + "/AUDIO/CHANNELMUTE", {{0, "On", 0}, {1, "Off", 0}}, 1);
        AddBool(device + "/AUDIO/AUDRECORDVALID", false);
    }

    void AddChannel(const QString& ddcPath, ChannelKind kind = Plain)
    {
        AddFloat(ddcPath + "/Frequency", 100000000.0, "Hz");
        AddFloat(ddcPath + "/FREQUENCY", 100000000.0, "Hz");
        AddSelection(ddcPath + "/Demodulation",
                     {{0, "AM", 0}, {1, "FM", 0}, {2, "USB", 0}, {3, "LSB", 0}, {4, "CW", 0}, {5, "IQ", 0}},
                     1);
        AddSelection(ddcPath + "/Bandwidth", Numbers({500, 2400, 9000, 15000, 120000}, "Hz"), 15000);
        AddFloat(ddcPath + "/LevelValue", 42.5, "dB\u00b5V");
        AddBool(ddcPath + "/SquelchState", false);
        AddFloat(ddcPath + "/SquelchValue", 12.0, "dB\u00b5V");
        AddBool(ddcPath + "/FrequencyCoupled", false);
        AddBool(ddcPath + "/DemodulationCoupled", false);
        AddBool(ddcPath + "/AudioMute", false);
        AddBool(ddcPath + "/AudioMode", false);
        AddFloat(ddcPath + "/AudioBalance", 0.0, "%");
        for (const char* recording : {"/AudioRecording", "/IfRecording", "/ChannelRecording"})
            AddSelection(ddcPath + recording, {{0, "On", 0}, {1, "Off", 0}}, 1);
        AddSelection(ddcPath + "/COB/WriteDB", {{0, "Off", 0}, {1, "On", 0}}, 0);
        AddText(ddcPath + "/ConnectedClient", QString());
        if (kind == PulseAnalysis) {
            AddSelection(ddcPath + "/DDCMode", {{0, "Normal", 0}, {1, "Pulse analysis", 0}}, 0);
            AddText(ddcPath + "/PDWPath", QString());
            AddText(ddcPath + "/HandoverPath", QString());
        }
    }

    static void AddText(const QString& path, const QString& text)
    {
        Add(path, ValueType::Text, text, QString(), {});
    }
    static void AddBool(const QString& path, bool on) { Add(path, ValueType::Bool, on, QString(), {}); }
    static void AddFloat(const QString& path, double number, const QString& unit)
    {
        Add(path, ValueType::Float, number, unit, {});
    }
    static void AddSelection(const QString& path, const QVector<SelectionItem>& items, int key)
    {
        Add(path, ValueType::Selection, key, QString(), items);
    }

    // The value at a path; a test that asks for one that is not there fails here.
    static BoolValue& Bool(const QString& path) { return Get<BoolValue>(path); }
    static TextValue& Text(const QString& path) { return Get<TextValue>(path); }
    static FloatValue& Float(const QString& path) { return Get<FloatValue>(path); }
    static ValueSelection& Selection(const QString& path) { return Get<ValueSelection>(path); }
    static ValueBase* Find(const QString& path) { return Tree::Instance()->FindValue(path); }
    static void Delete(const QString& path) { Tree::Instance()->DeleteValue(path); }

    // Items whose keys and numbers are the numbers themselves.
    static QVector<SelectionItem> Numbers(const QVector<int>& numbers, const QString& unit)
    {
        QVector<SelectionItem> items;
        for (int number : numbers)
            items.append(SelectionItem(number, QString::number(number) + ' ' + unit, number));
        return items;
    }

private:
    template <class T>
    static T& Get(const QString& path)
    {
        T* value = dynamic_cast<T*>(Find(path));
        if (!value)
            throw std::runtime_error("no value of the type asked for at " + path.toStdString());
        return *value;
    }

    static void Add(const QString& path, ValueType type, const QVariant& content, const QString& unit,
                    const QVector<SelectionItem>& items)
    {
        ValueDescription description;
        description.type = type;
        description.unit = unit;
        description.items = items;
        if (!ValueHost::Create(path, description, content))
            throw std::runtime_error("cannot make " + path.toStdString());
    }
};

// Writes down what it is told, in order.
class NotingObserver : public IObserver
{
public:
    struct Notice
    {
        Observable* subject;
        TChangeCode code;
    };

    void Update(Observable* subject, TChangeCode code) override { notices.append({subject, code}); }

    int Count(TChangeCode code) const
    {
        int count = 0;
        for (const Notice& notice : notices)
            count += notice.code == code;
        return count;
    }

    QVector<Notice> notices;
};
