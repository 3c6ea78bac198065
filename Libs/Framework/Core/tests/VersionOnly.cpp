// A program that exists for its version resource.
int main() {
    return 0;
}
