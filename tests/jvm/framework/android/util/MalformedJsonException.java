package android.util;

import java.io.IOException;

public class MalformedJsonException extends IOException {
    private static final long serialVersionUID = 1L;
}
