#pragma once

#include <QHash>
#include <QString>
#include <QVector>
#include <cstring>

// Items by their full path: open addressing with linear probing, grown at half load. A slot points
// straight at the text of the item's path, so that a look-up reads two places in memory. The item
// keeps that text alive and unchanged for as long as it is in the table.
template <class Item>
class PathTable
{
public:
    int Count() const { return int(m_count); }

    Item* Find(const QString& path) const
    {
        if (m_count == 0) {
            return nullptr;
        }
        const quint32 length = quint32(path.size());
        const char16_t* text = Text(path);
        const std::size_t hash = Hash(path);
        const Slot* table = m_slots.constData();
        const std::size_t mask = std::size_t(m_slots.size()) - 1;
        for (std::size_t i = hash & mask; table[i].item; i = (i + 1) & mask) {
            if (table[i].hash == quint32(hash >> 32) && table[i].length == length &&
                std::memcmp(table[i].text, text, length * sizeof(char16_t)) == 0) {
                return table[i].item;
            }
        }
        return nullptr;
    }

    // `path` is the item's own string and not in the table yet.
    void Insert(const QString& path, Item* item)
    {
        if (std::size_t(m_slots.size()) < 2 * (m_count + 1)) {
            Grow();
        }
        const std::size_t hash = Hash(path);
        Place(Slot{Text(path), item, quint32(hash >> 32), quint32(path.size())}, hash);
        ++m_count;
    }

    void Remove(const QString& path, const Item* item)
    {
        if (m_count == 0) {
            return;
        }
        const std::size_t mask = std::size_t(m_slots.size()) - 1;
        std::size_t hole = Hash(path) & mask;
        while (m_slots[qsizetype(hole)].item != item) {
            if (!m_slots[qsizetype(hole)].item) {
                return;
            }
            hole = (hole + 1) & mask;
        }
        // Items behind the hole move up where their own place is at or before it.
        for (std::size_t i = (hole + 1) & mask; m_slots[qsizetype(i)].item; i = (i + 1) & mask) {
            const std::size_t home = HashOf(m_slots[qsizetype(i)]) & mask;
            if (((i - home) & mask) >= ((i - hole) & mask)) {
                m_slots[qsizetype(hole)] = m_slots[qsizetype(i)];
                hole = i;
            }
        }
        m_slots[qsizetype(hole)] = Slot();
        --m_count;
    }

private:
    struct Slot
    {
        const char16_t* text = nullptr;
        Item* item = nullptr;  // null: free
        quint32 hash = 0;      // upper half; the lower one chose the slot
        quint32 length = 0;
    };

    static const char16_t* Text(const QString& path)
    {
        return reinterpret_cast<const char16_t*>(path.constData());
    }

    std::size_t Hash(QStringView path) const { return qHash(path, m_seed); }
    std::size_t HashOf(const Slot& slot) const
    {
        return Hash(QStringView(slot.text, qsizetype(slot.length)));
    }

    void Place(const Slot& slot, std::size_t hash)
    {
        const std::size_t mask = std::size_t(m_slots.size()) - 1;
        std::size_t i = hash & mask;
        while (m_slots[qsizetype(i)].item) {
            i = (i + 1) & mask;
        }
        m_slots[qsizetype(i)] = slot;
    }

    void Grow()
    {
        QVector<Slot> old(m_slots.isEmpty() ? 64 : 2 * m_slots.size());
        old.swap(m_slots);
        for (const Slot& slot : std::as_const(old)) {
            if (slot.item) {
                Place(slot, HashOf(slot));
            }
        }
    }

    QVector<Slot> m_slots;  // a power of two
    std::size_t m_count = 0;
    std::size_t m_seed = QHashSeed::globalSeed();
};
