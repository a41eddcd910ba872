// Carries the precompiled headers of the tests, which have to be compiled as those are.
int main() {}
