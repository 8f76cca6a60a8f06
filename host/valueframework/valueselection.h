#ifndef HOST_VALUESELECTION_H
#define HOST_VALUESELECTION_H

#include "valueframework/valuebase.h"

class SelectionItemPrivate;
class ValueSelectionPrivate;

// One entry of a selection. A small copyable record.
class VALUEFRAMEWORK_EXPORT SelectionItem
{
public:
    SelectionItem();
    SelectionItem(int key, const QString& text, double number);
    SelectionItem(const SelectionItem& other);
    SelectionItem& operator=(const SelectionItem& other);
    ~SelectionItem();

    int GetKey() const;       // what travels to the driver; unique within the selection
    QString GetText() const;  // untranslated
    double GetNumber()
        const;  // the quantity that the entry stands for (a bandwidth in Hz); 0 when there is none

private:
    SelectionItemPrivate* d;
};

// A list of items, one of them current. Without items: index -1, key -1, number 0, empty text.
class VALUEFRAMEWORK_EXPORT ValueSelection : public ValueBase
{
public:
    ValueSelection();
    ~ValueSelection();

    int GetCurrentKey() const;
    int GetCurrentIndex() const;
    double GetCurrentNumber() const;
    QString GetCurrentText() const;  // untranslated

    int GetCount() const;
    SelectionItem GetItem(int index) const;  // a default item when out of range

    // Each writes like a value's SetValue and is false, changing nothing, when there is no such item.
    bool SelectIndex(long index, IObserver* originator);
    bool SelectKey(int key, IObserver* originator);
    bool SelectText(const QString& text, IObserver* originator);

    QString GetText() const;  // the current item's text, untranslated
    bool SetText(const QString& text, IObserver* originator);

private:
    friend class ValueSelectionPrivate;
    ValueSelectionPrivate* d;
};

#endif
