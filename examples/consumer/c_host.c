#include <kivtools/kiv.h>
#include <stdio.h>

int main(void) {
  char text[256];
  int64_t amount = 0;
  if (KivInLitereCurrency(12345600, text, sizeof text) < 0) { /* ten-thousandths: 1234.56 */
    return 1;
  }
  puts(text);
  if (KivRoStrToCurrency("12x", KIV_ZERO_ENDED, &amount) < 0) {
    KivLastErrorMessage(text, sizeof text);
    puts(text);
  }
  return 0;
}
