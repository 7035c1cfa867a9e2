#include <iostream>

int main() {
    std::cout << "tessara: start-up not wired yet\n";
    return 0;
}
