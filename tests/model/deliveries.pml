/* SPDX-License-Identifier: MIT */
/* A model of the calls of host code, and of the removals and destructors that wait for them.
 *
 * It has two host threads, the worker, two observers of one name and one transfer. Inside and outside
 * of notifications each thread adds, sends, removes, starts and destroys as it likes. The assertions and
 * the search for deadlocks check these promises:
 *
 *   - No call begins after its removal has returned.
 *   - No call is under way on another thread when a removal returns, except on the threads that the
 *     rule names.
 *   - A transfer whose delegate and transport are kept is posted exactly once.
 *   - No thread waits forever.
 *
 * Thread models a host thread and, as WORKER, Run of http/background_worker.cc. Its inlines and labels
 * model notify/delivery.cc, notify/registry.cc, notify/delivery_gate.cc and
 * http/background_transfer.cc, and have the names of the functions there. An atomic block is a step
 * under a lock. A host function stands behind a gate like the delegate's.
 *
 * WAIT_ALWAYS and WAIT_NEVER break the rule that decides whether a thread waits.
 */

#define THREADS 3
#define WORKER 2 /* The other two are host threads. */

/* Targets of calls. The first ones are observers, the last ones gates. */
#define OBSERVERS 2
#define DELEGATE 2
#define TRANSPORT 3
#define TARGETS 4

/* How deep sends nest. */
#define DEPTH 2
#define MayNest (depth < (me == WORKER -> 1 : DEPTH))

/* notify/delivery.cc */
byte calls[THREADS * TARGETS]; /* the calls in the list, counted for each thread and target */
byte wait[THREADS];            /* 1 for the thread that waits longest, 0 if it does not wait */
byte waiting;                  /* number of threads that wait */
bit notified[THREADS];         /* by call_ended */

/* notify/registry.cc and notify/delivery_gate.cc */
bit open[TARGETS]; /* The observer is registered, the gate is not closed. */
bit publishing;    /* the mutex of the transport's gate */

/* http/background_transfer.cc and http/background_worker.cc */
bit started, submitted, queued, delivered;

/* What the host sees. */
byte in_call[THREADS * TARGETS]; /* host code under way */
byte gone[TARGETS] = 7;          /* threads, as bits, on which no call may begin any more */
bit transport_destroyed;
byte posts;

#define At(thread, target) ((thread) * TARGETS + (target))
#define Bit(thread) (1 << (thread))
#define IsSettled (!started || posts || !open[DELEGATE] || !open[TRANSPORT])

#if defined(WAIT_ALWAYS)
#define IsAwaited(thread) ((thread) != me)
#else
#define IsAwaited(thread) (wait[thread] == 0 || wait[thread] > wait[me])
#endif
#define IsCalledBy(thread, target) (calls[At(thread, target)] && IsAwaited(thread))
#define IsCalled(target) \
  (IsCalledBy(0, target) || IsCalledBy(1, target) || IsCalledBy(2, target))

#if defined(WAIT_NEVER)
#define MayWait false
#else
#define MayWait (me != WORKER)
#endif

/* A removal that returns promises nothing about calls on such a thread. */
#define IsExcused(thread) \
  (me == WORKER || (thread) == me || (wait[thread] && wait[thread] < wait[me]))

#define ForEachThread(Do) Do(0); Do(1); Do(2)
#define Notify(thread) notified[thread] = wait[thread] > 0

/* ~Delivery */
inline EndCall(target) {
  calls[At(me, target)]--;
  ForEachThread(Notify)
}

/* A removal or a destructor returns. Another thread may have added the observer again. */
#define CheckReturn(thread) assert(IsExcused(thread) || in_call[At(thread, target)] == 0)
#define MayCall(thread) (open[target] || (IsExcused(thread) && calls[At(thread, target)]))
inline Return(target) {
  ForEachThread(CheckReturn);
  gone[target] =
    gone[target] | (MayCall(0) -> 0 : 1) | (MayCall(1) -> 0 : 2) | (MayCall(2) -> 0 : 4)
}

/* Used inside an atomic block. A thread that sleeps leaves it, as it releases the lock. */
#define Advance(thread) wait[thread] = wait[thread] - (wait[thread] > wait[me])
inline WaitForOthers(target) {
  if
  :: MayWait ->
    waiting++;
    wait[me] = waiting;
    do
    :: IsCalled(target) -> notified[me] = 0; notified[me] == 1
    :: else -> break
    od;
    skip; /* A break cannot lead into a d_step. */
    d_step {
      Return(target);
      ForEachThread(Advance);
      wait[me] = 0;
      notified[me] = 0;
      waiting--
    }
  :: else -> d_step { Return(target) }
  fi
}

/* NotificationRegistry::Add and Remove */
inline AddObserver(observer) {
  atomic {
    !open[observer] -> open[observer] = 1; gone[observer] = 0
  }
}
inline RemoveObserver(observer) {
  atomic {
    open[observer] = 0;
    WaitForOthers(observer)
  }
}

/* DeliveryGate::Close, called by the destructors. Each object is destroyed once. */
inline CloseGate(gate) {
  atomic {
    open[gate] && !publishing -> open[gate] = 0
  }
  atomic {
    WaitForOthers(gate);
    if
    :: gate == TRANSPORT -> transport_destroyed = 1
    :: else
    fi
  }
}

proctype Thread(byte me) {
  byte depth;           /* sends under way */
  byte observer[DEPTH]; /* the observer that each of them calls */
  byte post_depth;      /* which of them is the post of the transfer */
  bit stops;

  if
  :: me == WORKER -> goto end_idle
  :: else
  fi;

  /* Inside an observer, or on a host thread outside all. */
host_code:
  if
  :: AddObserver(0)
  :: AddObserver(1)
  :: RemoveObserver(0)
  :: RemoveObserver(1)
  :: CloseGate(DELEGATE)
  :: CloseGate(TRANSPORT)
  :: atomic { /* InternetData::DownloadWithDelegate */
      !started -> started = 1; submitted = 1;
      open[DELEGATE] = 1; open[TRANSPORT] = 1; gone[DELEGATE] = 0; gone[TRANSPORT] = 0
    }
  :: MayNest -> observer[depth] = 0; depth++; goto send
  :: MayNest && queued && me != WORKER -> goto deliver
  :: depth > 0 -> goto end_call
  :: depth == 0 -> stops = 1; goto stop
  fi;
  goto host_code;

  /* NotificationRegistry::Send */
send:
  atomic {
    do
    :: observer[depth - 1] == OBSERVERS -> break
    :: observer[depth - 1] < OBSERVERS && !open[observer[depth - 1]] -> observer[depth - 1]++
    :: observer[depth - 1] < OBSERVERS && open[observer[depth - 1]] ->
      calls[At(me, observer[depth - 1])]++;
      goto begin_call
    od;
    observer[depth - 1] = 0;
    depth--;
    if
    :: post_depth == depth + 1 -> goto end_post
    :: else -> goto sent
    fi
  }
begin_call:
  atomic {
    assert(!(gone[observer[depth - 1]] & Bit(me)));
    in_call[At(me, observer[depth - 1])]++;
    goto host_code
  }
end_call:
  atomic {
    in_call[At(me, observer[depth - 1])]--;
    EndCall(observer[depth - 1]);
    observer[depth - 1]++;
    goto send
  }

  /* BackgroundTransfer::Deliver */
deliver:
  atomic {
    if
    :: delivered -> goto sent
    :: else -> delivered = 1; queued = 0
    fi
  }
  atomic {
    if
    :: !open[DELEGATE] -> goto sent
    :: else -> calls[At(me, DELEGATE)]++
    fi
  }
  atomic {
    !publishing;
    if
    :: !open[TRANSPORT] -> goto leave_delegate
    :: else -> publishing = 1
    fi
  }
  assert(!transport_destroyed);
  atomic {
    calls[At(me, TRANSPORT)]++;
    publishing = 0
  }
  atomic {
    assert(!((gone[DELEGATE] | gone[TRANSPORT]) & Bit(me)));
    in_call[At(me, DELEGATE)]++;
    in_call[At(me, TRANSPORT)]++;
    posts++;
    assert(posts == 1);
    depth++;
    post_depth = depth;
    goto send
  }
end_post:
  atomic {
    in_call[At(me, DELEGATE)]--;
    in_call[At(me, TRANSPORT)]--;
    post_depth = 0;
    EndCall(TRANSPORT)
  }
leave_delegate:
  atomic { EndCall(DELEGATE) }

sent:
  if
  :: depth > 0 || (me != WORKER && !stops) -> goto host_code
  :: depth == 0 && me == WORKER -> goto end_idle
  :: depth == 0 && stops -> goto stop
  fi;

  /* BackgroundWorker::Run */
end_idle:
  atomic { submitted -> submitted = 0 }
  if
  :: !open[DELEGATE] || !open[TRANSPORT] -> goto end_idle
  :: else
  fi;
  if
  :: queued = 1; goto end_idle /* The host's executor takes the completion. */
  :: goto deliver
  fi;

  /* A host thread ends when the transfer needs it no more. */
stop:
  if
  :: queued -> goto deliver
  :: IsSettled
  fi
}

init {
  atomic {
    run Thread(0);
    run Thread(1);
    run Thread(WORKER)
  }
}
