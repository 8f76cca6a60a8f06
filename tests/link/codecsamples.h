#pragma once

#include <QVector>

#include "link/messages.h"

// One message of every type, with every kind of content and the extremes of numbers.
QVector<Link::Message> sampleMessages();

// A text in which every field of the message stands, for comparing.
QString dumped(const Link::Message& message);
