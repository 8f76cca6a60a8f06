// Draws every control in each of its states, light and dark, at one and two pixels per unit, and
// checks what can be said of the pictures without an eye: that states differ, and that no state
// moves the layout. The boards lie in the build folder for whoever wants to look.

#include <QDir>
#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QStyleFactory>

#include "controlbench.h"
#include "valuecontrols/vcbar.h"
#include "valuecontrols/vcbutton.h"
#include "valuecontrols/vccheckbox.h"
#include "valuecontrols/vccomboboxclassic.h"
#include "valuecontrols/vclabel.h"
#include "valuecontrols/vclineedit.h"
#include "valuecontrols/vcnumericfloatspin.h"
#include "valuecontrols/vcslider.h"

namespace {

const char* const dotPicture[] = {
    "16 16 3 1",        "  c None",         ". c #808080",      "# c #ff0000",      "                ",
    "                ", "                ", "     .....      ", "    .#####.     ", "   .#######.    ",
    "   .#######.    ", "   .#######.    ", "   .#######.    ", "   .#######.    ", "    .#####.     ",
    "     .....      ", "                ", "                ", "                ", "                "};

const char* const barPicture[] = {
    "16 16 3 1",        "  c None",         ". c #000000",      "g c #00ff00",      "                ",
    " ....      .... ", " .  .      .  . ", " .  .      .  . ", " ....      .... ", "   ..........   ",
    "                ", "                ", "                ", "                ", "                ",
    "                ", "................", ".gggggggggggggg.", ".gggggggggggggg.", "................"};

enum State
{
    Normal,
    Pending,
    Refused,
    Stale,
    NotAvailable,
    Missing,
    Disabled
};
const char* const stateNames[] = {"normal",        "pending", "refused", "stale",
                                  "not available", "missing", "disabled"};

QPalette DarkPalette()
{
    QPalette palette(QColor(53, 53, 53));
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
    palette.setColor(QPalette::HighlightedText, Qt::black);
    return palette;
}

// One row of controls, each on a value of its own below `node`.
class Row
{
public:
    Row(QWidget* parent, const QString& node) : m_Node(node)
    {
        using B = ControlBench;
        m_Values = {&B::Float(node + "/Frequency", 98500000, 1e5, 6e9, "Hz"),
                    &B::Float(node + "/Level", 45.2, -200, 200, "dBµV"),
                    &B::Bool(node + "/Mute", true),
                    &B::Selection(node + "/Demodulation", {{0, "AM", 0}, {1, "FM", 0}}, 1),
                    &B::Selection(node + "/Bandwidth", {{0, "15 kHz", 15000}, {1, "120 kHz", 120000}}, 1),
                    &B::Float(node + "/Squelch", 12.5, -30, 130, "dBµV"),
                    &B::Float(node + "/Balance", 0.3, -1, 1, ""),
                    &B::Selection(node + "/Recording", {{0, "On", 0}, {1, "Off", 0}}, 0),
                    &B::PlainText(node + "/Client", "station7")};
        auto* const name = new VCLabel(parent, "DDC1");
        QFont bold = name->font();
        bold.setBold(true);
        name->setFont(bold);
        name->setFixedWidth(40);
        auto* const edit = new VCLineEdit(parent, "frequency", VCLineEdit::NUMBER);
        QFont small = edit->font();
        small.setPointSize(8);
        edit->setFont(small);
        edit->setFixedWidth(120);
        edit->SetText_ValuePath(node + "/Frequency");
        auto* const bar = new VCBar(parent, "Level", 17, 6, 1);
        bar->setFixedHeight(20);
        bar->setMinimumWidth(130);
        bar->setMaximumWidth(180);
        bar->SetStartValue(-30);
        bar->SetStopValue(130);
        bar->SetShowTextValueInside(true);
        bar->SetShowMinMaxInside(true);
        bar->SetPeak_ValuePath(node + "/Level");
        auto* const box = new VCCheckBox(parent, "Mute");
        box->setMinimumWidth(80);
        box->Set_ValuePath(node + "/Mute");
        auto* const demodulation = new VCComboBoxClassic(parent, "Demodulation");
        demodulation->setMinimumWidth(50);
        demodulation->SetValueSelection_ValuePath(node + "/Demodulation");
        auto* const bandwidth = new VCComboBoxClassic(parent, "Bandwidth");
        bandwidth->setMinimumWidth(70);
        bandwidth->SetValueSelection_ValuePath(node + "/Bandwidth");
        auto* const spin = new VCNumericFloatSpin(parent, "SquelchValue", true);
        spin->setMinimumWidth(40);
        spin->SetNumeric_ValuePath(node + "/Squelch");
        auto* const slider = new VCSlider(parent, "Audio Balance");
        slider->setOrientation(Qt::Horizontal);
        slider->setMinimumWidth(60);
        slider->SetNumeric_ValuePath(node + "/Balance");
        auto* const button = new VCButton(parent, "AudioRecording", false, 1);
        button->SetSpecialPicture(1, dotPicture);
        button->SetSpecialPicture(0, barPicture, true);
        button->SetValueSelection_ValuePath(node + "/Recording");
        auto* const label = new VCLabel(parent, nullptr);
        label->SetText_ValuePath(node + "/Client", true);
        m_Controls = {name, edit, bar, box, demodulation, bandwidth, spin, slider, button, label};
    }

    void Enter(State state)
    {
        switch (state) {
            case Pending:
                for (ValueBase* value : m_Values) {
                    WriteStatus status;
                    status.pending = true;
                    ValueHost::SetStatus(*value, status);
                }
                break;
            case Refused:
                for (ValueBase* value : m_Values) {
                    m_Authorities.push_back(std::make_unique<Authority>(*value));
                }
                QTest::mouseClick(m_Controls.at(8), Qt::LeftButton);
                m_Authorities.at(7)->Refuse("the channel is coupled to the main receiver");
                break;
            case Stale:
            case NotAvailable:
                for (ValueBase* value : m_Values)
                    ValueHost::SetState(*value, state == Stale ? VS_STALE : VS_NOT_AVAILABLE);
                break;
            case Missing:
                Tree::Instance()->DeleteValue(m_Node);
                break;
            case Disabled:
                for (QWidget* control : m_Controls)
                    control->setEnabled(false);
                break;
            default:
                break;
        }
    }

    const QList<QWidget*>& Controls() const { return m_Controls; }

private:
    QString m_Node;
    QVector<ValueBase*> m_Values;
    QList<QWidget*> m_Controls;
    std::vector<std::unique_ptr<Authority>> m_Authorities;
};

// Draws a widget as a screen with `ratio` pixels per unit would show it.
QImage Drawn(QWidget& widget, qreal ratio)
{
    QImage image(widget.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(widget.palette().color(QPalette::Window));
    QPainter painter(&image);
    widget.render(&painter);
    return image;
}

}  // namespace

class TestPictures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(UseWorkbenchFace());
        QApplication::setStyle(QStyleFactory::create("Fusion"));
    }

    void statesLookDifferentAndMoveNothing_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::addColumn<double>("ratio");
        QTest::newRow("light") << false << 1.0;
        QTest::newRow("dark") << true << 1.0;
        QTest::newRow("light-2x") << false << 2.0;
        QTest::newRow("dark-2x") << true << 2.0;
    }

    void statesLookDifferentAndMoveNothing()
    {
        QFETCH(bool, dark);
        QFETCH(double, ratio);
        QApplication::setPalette(dark ? DarkPalette() : QApplication::style()->standardPalette());
        ControlBench bench;
        QWidget board;
        auto* const grid = new QGridLayout(&board);
        std::vector<std::unique_ptr<Row>> rows;
        for (int state = Normal; state <= Disabled; ++state) {
            grid->addWidget(new QLabel(stateNames[state], &board), state, 0);
            rows.push_back(std::make_unique<Row>(&board, QStringLiteral("/S%1").arg(state)));
            int column = 1;
            for (QWidget* control : rows.back()->Controls())
                grid->addWidget(control, state, column++);
        }
        board.resize(board.sizeHint());
        board.show();
        ValueHost::SetContent(*Tree::Instance()->FindValue("/S0/Level"), 80.0, nullptr);
        ValueHost::SetContent(*Tree::Instance()->FindValue("/S0/Level"), 20.0, nullptr);
        ValueHost::SetContent(*Tree::Instance()->FindValue("/S0/Level"), 60.0, nullptr);
        QVERIFY(QTest::qWaitForWindowExposed(&board));
        QList<QRect> places;
        for (const auto& row : rows) {
            for (QWidget* control : row->Controls())
                places << control->geometry();
        }
        for (int state = Normal; state <= Disabled; ++state)
            rows.at(size_t(state))->Enter(State(state));
        QWidget* const edit = rows.at(Pending)->Controls().at(1);
        const QImage without = Drawn(*rows.at(Normal)->Controls().at(1), ratio);
        QTRY_VERIFY(Drawn(*edit, ratio) != without);  // the pending look comes a little later

        QList<QRect> after;
        for (const auto& row : rows) {
            for (QWidget* control : row->Controls())
                after << control->geometry();
        }
        QCOMPARE(after, places);
        for (int state = Pending; state <= Missing; ++state) {
            const int first = state == Refused ? 8 : 1;
            const int last = state == Refused ? 8 : 9;
            for (int column = first; column <= last; ++column) {
                const QImage plain = Drawn(*rows.at(Normal)->Controls().at(column), ratio);
                const QImage changed = Drawn(*rows.at(size_t(state))->Controls().at(column), ratio);
                QVERIFY2(plain != changed,
                         qPrintable(QStringLiteral("%1, column %2").arg(stateNames[state]).arg(column)));
            }
        }
        QDir().mkpath(QStringLiteral(RX_PICTURE_DIR));
        QVERIFY(Drawn(board, ratio)
                    .save(QStringLiteral(RX_PICTURE_DIR "/controls-%1.png").arg(QTest::currentDataTag())));
    }
};

QTEST_MAIN(TestPictures)
#include "tst_pictures.moc"
