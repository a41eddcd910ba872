package gxtest;

/** Two threads that do race, to see that the thread sanitizer watches natives called from Java. */
final class RaceControl {
    private RaceControl() {}

    static void twoThreadsRace() throws InterruptedException {
        Thread other = new Thread(Probe::race);
        other.start();
        Probe.race();
        other.join();
    }
}
