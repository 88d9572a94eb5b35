// Any bytes through lexer, parser and checker. Nothing is run: a text that is sound is only compiled. What fails has to
// fail with an error of its own.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "mel/compiler.h"
#include "mel/error.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    auto source = std::make_shared<mirk::mel::Source>();
    source->name = "fuzz";
    source->text.assign(reinterpret_cast<const char*>(data), size);
    try
    {
        mirk::mel::compile(source);
    }
    catch (const mirk::mel::ScriptError& e)
    {
        if (e.message.empty())
            __builtin_trap();
    }
    catch (const std::exception&)
    {
    }
    return 0;
}
