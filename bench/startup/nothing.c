/* A program that needs the C library alone. */
int main(void) {
  return 0;
}
