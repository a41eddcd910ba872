package android.view;

public class Gravity {
    public static final int CENTER_HORIZONTAL = 0x01;
    public static final int LEFT = 0x03;
    public static final int RIGHT = 0x05;
    public static final int START = 0x00800003;
    public static final int RELATIVE_HORIZONTAL_GRAVITY_MASK = 0x00800007;
}
