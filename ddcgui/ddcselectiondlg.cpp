#include "ddcselectiondlg.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "valueframework/node.h"
#include "valuetree/valuepaths.h"
#include "valuetree/valueptr.h"

namespace {

const int headerHeight = 20;  // pixels
const char* const channelMark = "DDC";

}  // namespace

DdcSelectionDlg::DdcSelectionDlg(QWidget* parent, const QString& title, const QString& valuePath)
    : QDialog(parent),
      m_pMainLayout(nullptr),
      m_pButtonGroup(nullptr),
      m_ValuePath(valuePath),
      m_bDecided(false)
{
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    m_pMainLayout = new QVBoxLayout(this);
    CreateHeaderRow();
    CreateDdcRows();
    CreateButtonRow();

    // QDialog has reject() as a slot only, so there is nothing to connect: Escape and the close
    // button run QDialog::reject(). Asked first, so that Qt does not warn about it at run time.
    if (metaObject()->indexOfSignal("reject()") >= 0)
        connect(this, SIGNAL(reject()), this, SLOT(Reject()));

    setMaximumSize(size());
}

DdcSelectionDlg::~DdcSelectionDlg()
{
    if (!m_bDecided) {
        m_Selection.clear();
        Q_EMIT SignalDDCSelected(m_Selection);
    }
    m_RadioButtons.clear();
    m_StatusLabels.clear();
    delete m_pMainLayout;
    m_pMainLayout = nullptr;
    delete m_pButtonGroup;
    m_pButtonGroup = nullptr;
}

void DdcSelectionDlg::CreateHeaderRow()
{
    QHBoxLayout* row = new QHBoxLayout;
    const QString texts[] = {tr("SELECT DDC:"), tr("CONNECTED CLIENT:")};
    for (const QString& text : texts) {
        QLabel* label = new QLabel(text, this);
        label->setMaximumHeight(headerHeight);
        // The bold copy is not applied: the headers keep the normal face on purpose.
        QFont bold(label->font());
        bold.setWeight(QFont::Bold);
        row->addWidget(label);
    }
    m_pMainLayout->addLayout(row);
}

void DdcSelectionDlg::CreateDdcRows()
{
    Tree* tree = Tree::Instance();
    const Node* node = tree ? tree->FindNode(m_ValuePath + ValuePaths::ddcNode) : nullptr;
    if (!node)
        return;
    m_RadioButtons.clear();
    m_StatusLabels.clear();
    m_pButtonGroup = new QButtonGroup(this);
    m_pButtonGroup->setExclusive(true);
    int id = 0;
    for (const TreeItem* child : node->GetChildren()) {
        const QString name = child->GetName();
        if (!name.contains(QLatin1String(channelMark)))
            continue;
        CreateDdcRow(name, id);
        ++id;
    }
}

void DdcSelectionDlg::CreateDdcRow(const QString& name, int id)
{
    QHBoxLayout* row = new QHBoxLayout;
    QRadioButton* button = new QRadioButton(name, this);
    m_pButtonGroup->addButton(button, id);
    row->addWidget(button);

    QLabel* status = new QLabel(tr("Free"), this);
    ValuePtr<TextValue> client;
    client.Attach(ClientPath(name));
    if (client.value) {
        const QString holder = client.value->GetValue();
        if (holder.isEmpty()) {
            status->setText(QLatin1String("FREE"));
        } else {
            status->setText(holder);
            QPalette palette(status->palette());
            palette.setBrush(QPalette::Window, QBrush(Qt::red, Qt::SolidPattern));
            status->setPalette(palette);
            status->setAutoFillBackground(true);  // a label shows its Window brush only with this
        }
    }
    m_StatusLabels.push_back(status);
    row->addWidget(status);
    m_pMainLayout->addLayout(row);
}

void DdcSelectionDlg::CreateButtonRow()
{
    QHBoxLayout* row = new QHBoxLayout;
    QPushButton* ok = new QPushButton(QLatin1String("&OK"), this);
    connect(ok, SIGNAL(clicked()), this, SLOT(OnOKClick()));
    row->addWidget(ok);
    QPushButton* cancel = new QPushButton(QLatin1String("&Cancel"), this);
    connect(cancel, SIGNAL(clicked()), this, SLOT(Reject()));
    row->addWidget(cancel);
    m_pMainLayout->addLayout(row);
}

QString DdcSelectionDlg::ClientPath(const QString& name) const
{
    return ValuePaths::DdcPath(m_ValuePath, name) + ValuePaths::connectedClient;
}

// Reads the value again: a channel may have been taken since the list was made.
bool DdcSelectionDlg::TakeSelection()
{
    const QAbstractButton* checked = m_pButtonGroup->checkedButton();
    if (!checked)
        return false;
    m_Selection = checked->text();
    ValuePtr<TextValue> client;
    client.Attach(ClientPath(m_Selection));
    return client.value && client.value->GetValue().isEmpty();
}

void DdcSelectionDlg::OnOKClick()
{
    if (!m_pButtonGroup) {
        Reject();
        return;
    }
    if (!TakeSelection())
        return;
    Q_EMIT SignalDDCSelected(m_Selection);
    m_bDecided = true;
    hide();
}

void DdcSelectionDlg::Reject()
{
    m_Selection.clear();
    Q_EMIT SignalDDCSelected(m_Selection);
    m_bDecided = true;
    hide();
}
