#include <style/Style.h>

int main() {
    try {
        gxtext::Style::fromFile("/nonexistent");
    } catch (const gxtext::Error&) {  // thrown in the library, caught outside
        return 0;
    }
    return 1;
}
