int	a;
