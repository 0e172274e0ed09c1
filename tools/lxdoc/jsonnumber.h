// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_JSONNUMBER_H
#define LXDOC_TOOL_JSONNUMBER_H

// Numbers for the JSON dump. The library keeps most values as float: widened
// to double, 0.8f prints as 0.800000011920929. A value that is exactly a
// float is given as the double nearest to the float's shortest decimal form,
// which prints as that form ("0.8").
class JsonNumber {
public:
    static double shortest(double value);
};

#endif
