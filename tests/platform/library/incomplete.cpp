// A driver library that calls what nothing provides.
extern "C" int nobodyHasThisFunction();

extern "C" int callIt() {
    return nobodyHasThisFunction();
}
