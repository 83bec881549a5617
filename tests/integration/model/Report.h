#pragma once

#include <string>

#include "model/Player.h"

/// What happened, to be pasted: each request as a line for `station`, with what it is to be answered,
/// and the last one also with what it was answered.
std::string report(const Sequence& sequence, const Mismatch& mismatch, const Unit& unit);
