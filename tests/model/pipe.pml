/* The message pipe (docs/protocol.md) as a model: greeting, delivery, acknowledgement, sending again, restart. One sender, one
   broker, one receiver. `./test model` runs the variants of variants.txt.

   The names of the states are those of the code:
   client         kConnecting, kGreeting (introduced, the broker's introduction awaited), kOpen, kUnreachable
   broker's peer  kGreeting, kOpen, kAbsent (its connection broke; the life is kept for the grace time)

   What goes wrong, at any point: the broker is killed and started anew with a new life (MAX_DEATHS times at most); a connection
   is cut (MAX_CUTS), of the frames on their way any number still arrives, and either side may notice late, the broker also
   after the client has connected again; the broker gives the receiver up, whose deliveries are dropped (MAX_GIVEN_UP).

   Where the receiver lives:
   RECEIVER_IN_BROKER  in the broker's process, as the service: it dies with its broker, and its life with it
   RECEIVER_IN_SENDER  in the sender's process, as the host: one client on one connection, which outlives every broker
   ANONYMOUS           as RECEIVER_IN_BROKER, but the sender does not introduce itself: at most once

   What holds: nobody handles a message twice in one life; the messages of a route are handled in their order; a message is done
   only when it was handled; a number means one thing to both sides; and where nobody can do anything more, every message is
   handled and done. No run goes on for ever: so every run comes to such a state.

   The flaws that can be compiled in, as WITHOUT_DEDUPLICATION, must be found: variants.txt says what each leads to.

   Not in the model: withdrawals, farewells, refusals, addressed messages, questions (a client that closes a connection on
   which nothing comes is a cut), dropping where queues are full. The 8 bytes stand with the introduction behind them. */

#ifndef MESSAGES
#define MESSAGES 3
#endif
#ifndef MAX_DEATHS
#define MAX_DEATHS 2
#endif
#ifndef MAX_CUTS
#define MAX_CUTS 2
#endif
#ifndef MAX_GIVEN_UP
#define MAX_GIVEN_UP 0
#endif
#ifndef MAX_FORGOTTEN
#define MAX_FORGOTTEN 0 /* senders that live: a flaw */
#endif
#define CAPACITY 2 /* frames in one direction of a connection */
#define SHARE 1    /* deliveries that are not written; beyond it the broker does not read the sender */
#define QUEUE 2    /* deliveries whose callbacks have not returned; beyond it the client does not read */

#define SENDER 0
#ifdef RECEIVER_IN_SENDER
#define CLIENTS 1
#define RECEIVER 0
#define FIRST_ROUTES 2 /* route 0 is announced later: its messages wait, and others are done before them */
#else
#define CLIENTS 2
#define RECEIVER 1
#define FIRST_ROUTES 3
#endif

#define DELIVERIES 12 /* of one life; the broker asserts that there are no more */
#define ALL ((1 << MESSAGES) - 1)
#define Bit(number) (1 << (number))
#define Below(number) ((1 << (number)) - 1)
#define RouteOf(message) ((message) & 1)
#define BOTH_ROUTES 3

mtype = {kConnecting, kGreeting, kOpen, kUnreachable, kAbsent, kNobody};
mtype = {kIntroduction, kAnnounce, kMessage, kSkip, kAcknowledge, kDelivery};

/* kIntroduction: first, received                                kAnnounce: routes
   kMessage: its number, which is not on the wire                kSkip: how many
   kAcknowledge: the set of the numbers                          kDelivery: its number, the sender's message */
chan up[CLIENTS] = [CAPACITY] of {mtype, short, byte, byte};
chan down[CLIENTS] = [CAPACITY] of {mtype, short, byte, byte};
chan old[CLIENTS] = [CAPACITY] of {mtype, short, byte, byte}; /* what came up a connection that the client has left */

/* The client's side. */
mtype state[CLIENTS] = kConnecting;
bool connected[CLIENTS];
bool whole[CLIENTS];      /* its connection is not cut */
byte next;                /* sender: number of the next message to write */
byte done;                /* sender: set of messages */
byte routes = FIRST_ROUTES;
bool mustAnnounce;
byte received;            /* receiver: deliveries, over its life */
byte taken;               /* receiver: set of messages */
byte handled;             /* receiver: set of messages whose callbacks have returned in this life */
byte queued[DELIVERIES];  /* receiver: message + 1 of a delivery whose callbacks have not returned, else 0 */
short toAcknowledge;      /* receiver: set of deliveries */

/* The broker's side. */
bool brokerLives = true;
mtype peer[CLIENTS] = kNobody;    /* its end of a connection */
mtype oldPeer[CLIENTS] = kNobody; /* its end of the connection that the client has left */
mtype record[CLIENTS] = kNobody;  /* what it keeps of a life */
bool isOfLatest[CLIENTS];         /* with the client's latest connection: it says which one each is */
byte counted;                     /* messages of the sender, with those that were skipped */
byte announced;                   /* routes of the receiver */
byte waiting;                     /* set of messages that nobody has announced */
byte kept[DELIVERIES];            /* message + 1 of a delivery that is not acknowledged, else 0 */
byte deliveriesFrom, deliveryNext, deliveryToWrite; /* before the first: dropped */
byte toTell;                      /* set of the sender's messages that are done */

/* For the conditions. */
byte everHandled;
byte dropped; /* when the receiver was given up; some may be handled all the same, late */
#ifdef ANONYMOUS
bool wrong; /* whether anything went wrong */
#define Wrong wrong = true
#else
#define Wrong skip
#endif
byte deaths, cuts, givenUp, forgotten;
hidden byte handledTwice, outOfOrder, doneUnhandled, miscounted, neverHandled, neverDone, neverOpen, disorder; /* failed ones */

#ifdef DELIVERIES_COUNTED_PER_BROKER
byte life = 1;
byte known; /* receiver: life of the broker that introduced itself last */
#endif

/* For one step. */
hidden mtype frame;
hidden short a;
hidden byte b, c, i, m, first;

#define Expect(flag, condition) \
    flag = !(condition); \
    assert(!flag)
#define Drain(channel) \
    do \
    :: len(channel) > 0 -> channel?_, _, _, _ \
    :: else -> break \
    od
#define MayWriteUp(who) (connected[who] && whole[who] && peer[who] != kNobody && nfull(up[who]))
#define MayWriteDown(who) (connected[who] && whole[who] && nfull(down[who]))

#include "client.pml"
#include "broker.pml"
#include "faults.pml"

init {
    atomic {
        run Client(SENDER);
#if RECEIVER != SENDER
        run Client(RECEIVER);
#endif
        run Broker();
        run Faults();
    }
    timeout -> d_step { /* nobody can do anything more */
        Expect(neverOpen, state[SENDER] == kOpen && state[RECEIVER] == kOpen);
#ifdef ANONYMOUS
        Expect(neverHandled, wrong || everHandled == ALL);
#else
        Expect(neverHandled, (everHandled | dropped) == ALL);
#ifndef WITHOUT_SENDING_AGAIN
        Expect(neverDone, done == ALL);
#endif
#endif
        skip
    }
}
