#pragma once
#include <iomanip>
#include <iostream>

using std::cerr;
using std::cin;
using std::cout;
using std::endl;
using std::flush;
using std::ios;
using std::istream;
using std::ostream;
