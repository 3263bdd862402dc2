#ifndef SERIAL_PORT_H_
#define SERIAL_PORT_H_

/* Half of a port: the KSVF file comes over a serial line from a PC that runs
   send_ksvf.py. You write the functions below and ksvf_port_clock(), whose pointer
   is the player; microbit.c is an example.

   The line has 8 bits and no flow control. Nothing is sent to the board that it has
   not asked for, so a receiver of one byte that is polled is enough:

     board: check 128 64 5\n asks for up to 64 bytes of the file from byte 128 on, for
            play 128 64 9\n  the dry run or for the play; last, the number of the question
     PC:    one byte         how many follow, fewer at the end of the file; 255: end
                             this play; 254, at byte 0: say which devices there are
            the bytes        none after 254 and 255
            two bytes        CRC-16 (0x1021, begins with 0xffff) of the number of the
                             question as four bytes and of all bytes of the answer before
     board: end TEXT\n       the result of the file or of 254. All other lines are text
                             for people.

   Numbers are decimal in lines and big-endian in the answer. An answer that does
   not come within half a second, or not as it was sent, is asked for again; each
   time the question has another number, so that a late answer is taken for noise. A
   board that has nothing to do asks for the beginning of a file, for ever. Files of
   tapforge -v2 are not for it. */

#ifndef KSVF_BLOCK /* Bytes to ask for at once, 1 to 253. */
#define KSVF_BLOCK 128
#endif

/* Gets one file: checks all of it in a dry run, plays it, and tells the result.
   Returns when that is told; call it in a loop that does not end. */
void serial_port_serve(void);

/* You write these. */

/* Sends a byte, as soon as the line takes it. */
void serial_put(unsigned char byte);

/* The next byte from the line. Waits for half a second, then returns -1. */
int serial_get(void);

#endif /* SERIAL_PORT_H_ */
