package gxtest;

import java.lang.reflect.Field;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;

/** Reaches the natives of the SDK's classes, which keep them private. */
final class Sdk {
    static final String PACKAGE = "com.norvale.android.sdk.gxe.";
    static final String TEXT = PACKAGE + "GxText";
    static final String FONTS = PACKAGE + "font.FontManager";
    static final String ERROR = PACKAGE + "util.GxError";

    private Sdk() {}

    static Object newText() {
        try {
            // Its natives are called one by one: neither its constructor nor its finalizer joins in.
            setField(PACKAGE + "util.NativeLibrary", "loaded", null);
            Object text = Class.forName(TEXT).getConstructor().newInstance();
            setField(TEXT, "closed", text);
            return text;
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(e);
        }
    }

    static Object fonts(String method, Object... arguments) {
        return invoke(FONTS, null, "GxFontManager_" + method, arguments);
    }

    static int error() {
        return (Integer) invoke(ERROR, null, "Error_GetError");
    }

    /** Calls the native of this name; what Java code under it throws comes out as it was thrown. */
    static Object call(Object text, String method, Object... arguments) {
        return invoke(TEXT, text, "GxText_" + method, arguments);
    }

    /** Calls a native of the class whose natives are found by their names. */
    static Object extension(String method, Object... arguments) {
        return invoke(PACKAGE + "TextExtension", null, method, arguments);
    }

    static boolean flag(Object text, String method, Object... arguments) {
        return (Boolean) call(text, method, arguments);
    }

    static int number(Object text, String method, Object... arguments) {
        return (Integer) call(text, method, arguments);
    }

    static int handle(Object text) {
        try {
            return handleField().getInt(text);
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(e);
        }
    }

    static void setHandle(Object text, int handle) {
        try {
            handleField().setInt(text, handle);
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(e);
        }
    }

    static Method[] textNatives() {
        try {
            return java.util.Arrays.stream(Class.forName(TEXT).getDeclaredMethods())
                    .filter(method -> Modifier.isNative(method.getModifiers()))
                    .toArray(Method[]::new);
        } catch (ClassNotFoundException e) {
            throw new AssertionError(e);
        }
    }

    /** Of a native of {@code GxText}, as {@link #call} takes it. */
    static String nameOf(Method method) {
        return method.getName().substring("GxText_".length());
    }

    private static void setField(String className, String name, Object object)
            throws ReflectiveOperationException {
        Field field = Class.forName(className).getDeclaredField(name);
        field.setAccessible(true);
        field.setBoolean(object, true);
    }

    private static Field handleField() throws ReflectiveOperationException {
        Field field = Class.forName(TEXT).getDeclaredField("mHandle");
        field.setAccessible(true);
        return field;
    }

    /** The native of {@code GxText}, for callers that make many calls. */
    static Method textNative(String name) {
        return find(TEXT, "GxText_" + name);
    }

    private static Object invoke(String className, Object target, String name, Object... arguments) {
        try {
            return find(className, name).invoke(target, arguments);
        } catch (InvocationTargetException e) {
            throw Sdk.<RuntimeException>rethrow(e.getCause());
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(e);
        }
    }

    private static Method find(String className, String name) {
        try {
            for (Method method : Class.forName(className).getDeclaredMethods()) {
                if (method.getName().equals(name)) {
                    method.setAccessible(true);
                    return method;
                }
            }
        } catch (ClassNotFoundException e) {
            throw new AssertionError(e);
        }
        throw new AssertionError(className + " has no " + name);
    }

    @SuppressWarnings("unchecked")
    private static <T extends Throwable> T rethrow(Throwable thrown) throws T {
        throw (T) thrown;
    }
}
