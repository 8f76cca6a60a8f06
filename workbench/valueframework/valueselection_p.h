#pragma once

#include "valueframework/valueselection.h"

class ValueSelectionPrivate
{
public:
    static ValueSelectionPrivate& Of(const ValueSelection& selection) { return *selection.d; }

    static const QVector<SelectionItem>& Items(const ValueSelection& selection);

    // Position of the item with a key, -1 when there is none.
    static int IndexOfKey(const QVector<SelectionItem>& items, int key);

    // The item that a person means by a text: the exact text, else the only one that differs in
    // case alone, else the only one that stands for the same quantity. -1 when there is none.
    static int IndexOfText(const ValueSelection& selection, const QString& text);

    // Finds the current item again after the items changed. True when another one is current now.
    static bool FollowItems(ValueSelection& selection, int oldKey);

    static bool Select(ValueSelection& selection, int index, IObserver* originator);

    int current = -1;
};
