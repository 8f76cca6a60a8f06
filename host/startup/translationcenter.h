#ifndef HOST_TRANSLATIONCENTER_H
#define HOST_TRANSLATIONCENTER_H

#include <QtCore/QString>

#include "startup/startup_global.h"

class TranslationCenterPrivate;

// Installs translation catalogues by name. Registrations count: a catalogue is taken out when the
// last one is given back. A name without a catalogue for the current language is harmless.
class STARTUP_EXPORT TranslationCenter
{
public:
    static TranslationCenter* Instance();
    void Register(const QString& catalogue);
    void Unregister(const QString& catalogue);

private:
    Q_DISABLE_COPY(TranslationCenter)
    friend class TranslationCenterPrivate;
    TranslationCenter();
    ~TranslationCenter();
    TranslationCenterPrivate* d;
};

#endif
