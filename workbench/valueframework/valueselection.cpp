#include "valueframework/valueselection.h"

#include <atomic>
#include <cmath>

#include "valueframework/quantity.h"
#include "valueframework/valuebase_p.h"
#include "valueframework/valueselection_p.h"

// --- item ---------------------------------------------------------------------------------------

// Shared by all copies of an item; never changes.
class SelectionItemPrivate
{
public:
    SelectionItemPrivate(int itemKey, const QString& itemText, double itemNumber)
        : key(itemKey), text(itemText), number(itemNumber)
    {}

    std::atomic<int> references{1};
    const int key;
    const QString text;
    const double number;
};

SelectionItem::SelectionItem() : d(nullptr) {}

SelectionItem::SelectionItem(int key, const QString& text, double number)
    : d(new SelectionItemPrivate(key, text, number))
{}

SelectionItem::SelectionItem(const SelectionItem& other) : d(other.d)
{
    if (d) {
        d->references.fetch_add(1, std::memory_order_relaxed);
    }
}

SelectionItem& SelectionItem::operator=(const SelectionItem& other)
{
    SelectionItem copy(other);
    std::swap(d, copy.d);
    return *this;
}

SelectionItem::~SelectionItem()
{
    if (d && d->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete d;
    }
}

int SelectionItem::GetKey() const
{
    return d ? d->key : -1;
}

QString SelectionItem::GetText() const
{
    return d ? d->text : QString();
}

double SelectionItem::GetNumber() const
{
    return d ? d->number : 0;
}

// --- private ------------------------------------------------------------------------------------

namespace {

constexpr double sameNumber = 1e-9;  // relative

bool IsSameNumber(double a, double b)
{
    return std::fabs(a - b) <= sameNumber * std::max(std::fabs(a), std::fabs(b));
}

// Whether an item stands for a quantity, by its number or, where it has none, by its text.
bool StandsFor(const SelectionItem& item, double number, const QString& unit, const QString& itemUnit)
{
    double written = 0;
    QString writtenUnit;
    const bool readable = Quantity::Read(item.GetText(), &written, &writtenUnit);
    const QString ownUnit = readable && !writtenUnit.isEmpty() ? writtenUnit : itemUnit;
    const bool unitFits = unit.isEmpty() || (ownUnit.isEmpty() ? Quantity::IsKnownUnit(unit)
                                                               : Quantity::SameUnit(unit, ownUnit));
    if (!unitFits) {
        return false;
    }
    return (item.GetNumber() != 0 && IsSameNumber(item.GetNumber(), number)) ||
           (readable && IsSameNumber(written, number));
}

// The position of the only item that fits; -1 when none or several do.
template <class Fits>
int OnlyOne(const QVector<SelectionItem>& items, Fits fits)
{
    int found = -1;
    for (int i = 0; i < items.size(); ++i) {
        if (fits(items.at(i))) {
            if (found >= 0) {
                return -1;
            }
            found = i;
        }
    }
    return found;
}

}  // namespace

const QVector<SelectionItem>& ValueSelectionPrivate::Items(const ValueSelection& selection)
{
    return ValueBasePrivate::Of(selection).description.items;
}

int ValueSelectionPrivate::IndexOfKey(const QVector<SelectionItem>& items, int key)
{
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i).GetKey() == key) {
            return i;
        }
    }
    return -1;
}

int ValueSelectionPrivate::IndexOfText(const ValueSelection& selection, const QString& text)
{
    const QVector<SelectionItem>& items = Items(selection);
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i).GetText() == text) {
            return i;
        }
    }
    const QString trimmed = text.trimmed();
    const int byCase = OnlyOne(items, [&trimmed](const SelectionItem& item) {
        return item.GetText().trimmed().compare(trimmed, Qt::CaseInsensitive) == 0;
    });
    double number = 0;
    QString unit;
    if (byCase >= 0 || !Quantity::Read(trimmed, &number, &unit)) {
        return byCase;
    }
    const QString& itemUnit = ValueBasePrivate::Of(selection).description.unit;
    return OnlyOne(items, [&](const SelectionItem& item) { return StandsFor(item, number, unit, itemUnit); });
}

bool ValueSelectionPrivate::FollowItems(ValueSelection& selection, int oldKey)
{
    const QVector<SelectionItem>& items = Items(selection);
    const int kept = IndexOfKey(items, oldKey);
    Of(selection).current = kept >= 0 ? kept : (items.isEmpty() ? -1 : 0);
    return selection.GetCurrentKey() != oldKey;
}

bool ValueSelectionPrivate::Select(ValueSelection& selection, int index, IObserver* originator)
{
    ValueSelectionPrivate& own = Of(selection);
    ValueBasePrivate& d = ValueBasePrivate::Of(selection);
    if (own.current != index || d.description.event) {
        own.current = index;
        d.Changed(selection, originator);
    }
    return true;
}

// --- selection ----------------------------------------------------------------------------------

ValueSelection::ValueSelection() : d(new ValueSelectionPrivate)
{
    ValueBasePrivate& base = ValueBasePrivate::Of(*this);
    base.type = ValueType::Selection;
    base.description.type = base.type;
}

ValueSelection::~ValueSelection()
{
    AnnounceDeletion();
    delete d;
}

int ValueSelection::GetCurrentKey() const
{
    return GetItem(d->current).GetKey();
}

int ValueSelection::GetCurrentIndex() const
{
    return d->current;
}

double ValueSelection::GetCurrentNumber() const
{
    return GetItem(d->current).GetNumber();
}

QString ValueSelection::GetCurrentText() const
{
    return GetItem(d->current).GetText();
}

int ValueSelection::GetCount() const
{
    return int(ValueSelectionPrivate::Items(*this).size());
}

SelectionItem ValueSelection::GetItem(int index) const
{
    return ValueSelectionPrivate::Items(*this).value(index);
}

bool ValueSelection::SelectIndex(long index, IObserver* originator)
{
    return index >= 0 && index < GetCount() && ValueSelectionPrivate::Select(*this, int(index), originator);
}

bool ValueSelection::SelectKey(int key, IObserver* originator)
{
    return SelectIndex(ValueSelectionPrivate::IndexOfKey(ValueSelectionPrivate::Items(*this), key),
                       originator);
}

bool ValueSelection::SelectText(const QString& text, IObserver* originator)
{
    const QVector<SelectionItem>& items = ValueSelectionPrivate::Items(*this);
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i).GetText() == text) {
            return SelectIndex(i, originator);
        }
    }
    return false;
}

QString ValueSelection::GetText() const
{
    return GetCurrentText();
}

bool ValueSelection::SetText(const QString& text, IObserver* originator)
{
    return SelectIndex(ValueSelectionPrivate::IndexOfText(*this, text), originator);
}
