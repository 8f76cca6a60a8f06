#include "startup/translationcenter.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>
#include <QTranslator>

#include "startup/startuphost.h"

class TranslationCenterPrivate
{
public:
    static TranslationCenter* Create() { return new TranslationCenter; }
    static TranslationCenterPrivate& Get() { return *TranslationCenter::Instance()->d; }

    void Register(const QString& name)
    {
        Catalogue& catalogue = m_Catalogues[name];
        if (catalogue.uses++ == 0)
            Install(name, catalogue);
    }

    void Unregister(const QString& name)
    {
        const auto found = m_Catalogues.find(name);
        if (found == m_Catalogues.end() || --found->uses > 0)
            return;
        delete found->translator;  // takes itself out of the application
        m_Catalogues.erase(found);
    }

    void SetSource(const QString& folder, const QString& language)
    {
        m_Folder = folder;
        m_Language = language;
        for (auto catalogue = m_Catalogues.begin(); catalogue != m_Catalogues.end(); ++catalogue) {
            delete catalogue->translator;
            catalogue->translator = nullptr;
            Install(catalogue.key(), *catalogue);
        }
    }

private:
    struct Catalogue
    {
        int uses = 0;
        QTranslator* translator = nullptr;  // null: no catalogue of this name in this language
    };

    void Install(const QString& name, Catalogue& catalogue)
    {
        if (m_Folder.isEmpty() || !QCoreApplication::instance())
            return;
        const QLocale locale = m_Language.isEmpty() ? QLocale::system() : QLocale(m_Language);
        QTranslator* const translator = new QTranslator;
        if (!translator->load(locale, name, QStringLiteral("_"), m_Folder)) {
            delete translator;
            return;
        }
        QCoreApplication::installTranslator(translator);
        catalogue.translator = translator;
    }

    QHash<QString, Catalogue> m_Catalogues;
    QString m_Folder;
    QString m_Language;
};

TranslationCenter::TranslationCenter() : d(new TranslationCenterPrivate) {}

TranslationCenter::~TranslationCenter()
{
    delete d;
}

TranslationCenter* TranslationCenter::Instance()
{
    static TranslationCenter* const instance = TranslationCenterPrivate::Create();
    return instance;
}

void TranslationCenter::Register(const QString& catalogue)
{
    d->Register(catalogue);
}

void TranslationCenter::Unregister(const QString& catalogue)
{
    d->Unregister(catalogue);
}

void StartupHost::SetTranslations(const QString& folder, const QString& language)
{
    TranslationCenterPrivate::Get().SetSource(folder, language);
}
