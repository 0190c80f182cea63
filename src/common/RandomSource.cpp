// SPDX-License-Identifier: Apache-2.0
#include "common/RandomSource.h"

#include <QRandomGenerator>

namespace
{
class SystemRandom final : public RandomSource
{
public:
    double NextBelowOne() const override { return QRandomGenerator::system()->generateDouble(); }
};

const RandomSource* currentRandomSource = nullptr;
} // namespace

const RandomSource& RandomSource::Current()
{
    static const SystemRandom system;
    return currentRandomSource ? *currentRandomSource : system;
}

void RandomSource::SetCurrent(const RandomSource* source)
{
    currentRandomSource = source;
}
