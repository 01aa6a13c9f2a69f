// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// One row of the vendor's extension unit, written down apart from the library.
struct ExpectedMapping
{
    struct Item
    {
        unsigned int value;
        std::string name;
    };

    unsigned int id;
    std::string name;
    unsigned int selector;
    unsigned int size;   ///< In bits.
    unsigned int offset; ///< In bits.
    unsigned int v4l2Type;
    unsigned int dataType;
    unsigned int family; ///< The one that the library gives to the id.
    std::vector<Item> menu;
};

/// All rows, in the order in which the driver is to learn of them.
std::vector<ExpectedMapping> const& expectedMappings();
