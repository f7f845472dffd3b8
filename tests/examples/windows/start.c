/* Where an example begins, without a C run-time library's start-up code. */

int main(void);

/* The compiler has main call it, for constructors. There are none. */
void __main(void);
void __main(void) {}

/* By an address that a loader has to correct. */
static int (*const volatile program)(void) = main;

int start(void);
int start(void) {
  return program();
}
