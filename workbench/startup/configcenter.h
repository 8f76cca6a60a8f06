#pragma once

#include <memory>
#include <vector>

#include "startup/configdocument.h"

// The configuration of the process. GUI thread only.
class ConfigCenter
{
public:
    static ConfigCenter& Instance();

    // Null without a configuration.
    ConfigDocument* Current() { return m_Current.get(); }

    // Null takes the configuration away. What was handed out of the former one stays valid: it is
    // kept until the process ends.
    void Set(std::unique_ptr<ConfigDocument> document);

private:
    std::unique_ptr<ConfigDocument> m_Current;
    std::vector<std::unique_ptr<ConfigDocument>> m_Former;
};
