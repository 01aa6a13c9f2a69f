// SPDX-License-Identifier: MIT
#include "ForkGuard.h"

#include <pthread.h>

namespace ImageAcquisition::Session
{

std::atomic<unsigned> ForkGuard::forks{0};

int const ForkGuard::registered = pthread_atfork(nullptr, nullptr, [] { ++forks; });

} // namespace ImageAcquisition::Session
